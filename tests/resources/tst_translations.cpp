#include "resources/resources.h"

#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

const QString sourceFolder = QStringLiteral(ZELVARO_SOURCE_DIR);

struct Message
{
    QString context;
    QString source;
    QStringList translations; ///< one, or one for each plural form of the language
    QString type;             ///< empty when finished
    bool plural = false;
};

void readTranslation(QXmlStreamReader &xml, Message &message)
{
    message.type = xml.attributes().value(QStringLiteral("type")).toString();
    if (!message.plural) {
        message.translations.append(xml.readElementText());
        return;
    }
    while (xml.readNextStartElement())
        message.translations.append(xml.readElementText());
}

QVector<Message> messages(const QString &fileName)
{
    QVector<Message> result;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return result;
    QXmlStreamReader xml(&file);
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QLatin1String("name")) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("message")) {
            Message message;
            message.context = context;
            message.plural = xml.attributes().hasAttribute(QStringLiteral("numerus"));
            result.append(message);
        } else if (xml.name() == QLatin1String("source")) {
            result.last().source = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            readTranslation(xml, result.last());
        }
    }
    return result;
}

QStringList placeholders(const QString &text)
{
    static const QRegularExpression one(
        QStringLiteral("%(?:L?\\d+|n|[-+ 0-9.]*[dfsuc%])|&(?=\\w)"));
    QStringList found;
    auto matches = one.globalMatch(text);
    while (matches.hasNext())
        found.append(matches.next().captured());
    found.sort();
    return found;
}

void addLanguages()
{
    QTest::addColumn<QString>("name");
    for (const char *name : {"Zelvaro_jp", "Zelvaro_zh", "zelvaro_ru"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

QString tsFile(const QString &name)
{
    return sourceFolder + QStringLiteral("/resources/translations/%1.ts").arg(name);
}

QString what(const Message &message)
{
    return QStringLiteral("%1: \"%2\"").arg(message.context, message.source);
}

} // namespace

class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void everyTextIsTranslated_data() { addLanguages(); }
    void everyTextIsTranslated();
    void textsAreThoseOfTheSources_data() { addLanguages(); }
    void textsAreThoseOfTheSources();
    void placeholdersAreKept_data() { addLanguages(); }
    void placeholdersAreKept();
    void pluralFormsAreAllThere_data();
    void pluralFormsAreAllThere();
    void sameTextsAreTranslatedAlike_data() { addLanguages(); }
    void sameTextsAreTranslatedAlike();
    void fileIsInTheTree_data() { addLanguages(); }
    void fileIsInTheTree();
    void nothingLoadsThem();
};

void TestTranslations::everyTextIsTranslated()
{
    QFETCH(QString, name);
    const QVector<Message> all = messages(tsFile(name));
    QVERIFY2(all.size() >= 80, qPrintable(QString::number(all.size())));
    for (const Message &message : all) {
        QVERIFY2(message.type.isEmpty(), qPrintable(what(message) + " is " + message.type));
        QVERIFY2(!message.translations.isEmpty(), qPrintable(what(message)));
        for (const QString &translation : message.translations)
            QVERIFY2(!translation.trimmed().isEmpty(), qPrintable(what(message)));
    }
}

/// A text that is new in the sources would be marked unfinished, a removed one vanished.
void TestTranslations::textsAreThoseOfTheSources()
{
    QFETCH(QString, name);
    QTemporaryDir folder;
    const QString copy = folder.filePath(name + QLatin1String(".ts"));
    QVERIFY(QFile::copy(tsFile(name), copy));
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);

    QProcess update;
    update.setWorkingDirectory(sourceFolder);
    update.start(QStringLiteral(ZELVARO_LUPDATE), {"-silent", "-I", ".", "-locations", "none",
                                                   "app", "settings", "camera", "ui", "-ts", copy});
    QVERIFY(update.waitForFinished(100000));
    QCOMPARE(update.exitCode(), 0);

    const QVector<Message> all = messages(copy);
    QCOMPARE(all.size(), messages(tsFile(name)).size());
    for (const Message &message : all)
        QVERIFY2(message.type.isEmpty(), qPrintable(what(message) + " is " + message.type));
}

void TestTranslations::placeholdersAreKept()
{
    QFETCH(QString, name);
    for (const Message &message : messages(tsFile(name))) {
        const QString &source = message.source;
        for (const QString &translation : message.translations) {
            QVERIFY2(placeholders(source) == placeholders(translation), qPrintable(what(message)));
            // Blanks at the ends join the text to a name or a number.
            QVERIFY2(source.startsWith(' ') == translation.startsWith(' '),
                     qPrintable(what(message)));
            QVERIFY2(source.endsWith(' ') == translation.endsWith(' '), qPrintable(what(message)));
            QCOMPARE(translation.count('\n'), source.count('\n'));
        }
    }
}

void TestTranslations::pluralFormsAreAllThere_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("forms");
    QTest::newRow("Japanese") << "Zelvaro_jp" << 1;
    QTest::newRow("Chinese") << "Zelvaro_zh" << 1;
    QTest::newRow("Russian") << "zelvaro_ru" << 3;
}

void TestTranslations::pluralFormsAreAllThere()
{
    QFETCH(QString, name);
    QFETCH(int, forms);
    for (const Message &message : messages(tsFile(name)))
        QVERIFY2(message.translations.size() == (message.plural ? forms : 1),
                 qPrintable(what(message)));
}

void TestTranslations::sameTextsAreTranslatedAlike()
{
    QFETCH(QString, name);
    QMap<QString, QStringList> known;
    for (const Message &message : messages(tsFile(name))) {
        const auto before = known.constFind(message.source);
        if (before != known.cend())
            QVERIFY2(*before == message.translations, qPrintable(what(message)));
        known.insert(message.source, message.translations);
    }
}

void TestTranslations::fileIsInTheTree()
{
    QFETCH(QString, name);
    QTranslator translator;
    QVERIFY(translator.load(QStringLiteral(":/%1.qm").arg(name)));
    QVERIFY(!translator.isEmpty());
    for (const Message &message : messages(tsFile(name))) {
        const QString shown = translator.translate(message.context.toUtf8().constData(),
                                                   message.source.toUtf8().constData(), nullptr,
                                                   message.plural ? 1 : -1);
        QVERIFY2(shown == message.translations.first(), qPrintable(what(message)));
    }
}

void TestTranslations::nothingLoadsThem()
{
    for (const char *folder : {"app", "settings", "camera", "ui", "resources"}) {
        QDirIterator files(sourceFolder + QLatin1Char('/') + QLatin1String(folder),
                           {"*.cpp", "*.h"}, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            QVERIFY2(!file.readAll().contains(".qm"), qPrintable(file.fileName()));
        }
    }
}

QTEST_GUILESS_MAIN(TestTranslations)

#include "tst_translations.moc"
