#include "resources/render_art/art_book.h"

#include <QtTest>

using zelvaro::ArtBook;

/// A folder of drawings that a test writes itself.
class ArtFolder
{
public:
    explicit ArtFolder(const QByteArray &images)
    {
        write(QStringLiteral("palette.txt"), "ink #27455d\nwhite #ffffff\ndark-line #000010\n");
        write(QStringLiteral("images.txt"), images);
    }

    void write(const QString &name, const QByteArray &text)
    {
        QFile file(m_folder.filePath(name));
        m_good = m_good && file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
    }

    bool isGood() const { return m_good; }
    QString path() const { return m_folder.path(); }

private:
    QTemporaryDir m_folder;
    bool m_good = true;
};

class TestArtBook : public QObject
{
    Q_OBJECT

private slots:
    void readsImagesAndKinds();
    void fillsInSizesColoursAndValues();
    void putsInOtherDrawings();
    void saysWhatIsWrong_data();
    void saysWhatIsWrong();
    void fillsInStyleSheets();
};

void TestArtBook::readsImagesAndKinds()
{
    ArtFolder folder("# a comment\nkind round icon glyph=x weight=2\n\n"
                     "panel/one 32x24 round weight=3\ntwo 8x9 plain\n");
    QVERIFY(folder.isGood());
    const ArtBook book(folder.path());
    QVERIFY2(book.error().isEmpty(), qPrintable(book.error()));
    QCOMPARE(book.images().size(), 2);
    QCOMPARE(book.images()[0].name, QStringLiteral("panel/one"));
    QCOMPARE(book.images()[0].size, QSize(32, 24));
    QCOMPARE(book.images()[0].drawing, QStringLiteral("icon"));
    QCOMPARE(book.images()[0].values.value("glyph"), QStringLiteral("x"));
    QCOMPARE(book.images()[0].values.value("weight"), QStringLiteral("3"));
    QCOMPARE(book.images()[1].drawing, QStringLiteral("plain"));
}

void TestArtBook::fillsInSizesColoursAndValues()
{
    ArtFolder folder("one 32x24 plain stroke=dark-line y=4\n");
    folder.write("plain.svg",
                 "<svg {{width}} {{height-1}} {{width+10}} {{ink}} {{stroke}} {{y+1}}/>");
    QVERIFY(folder.isGood());
    ArtBook book(folder.path());
    QCOMPARE(book.svg(book.images()[0]), QStringLiteral("<svg 32 23 42 #27455d #000010 5/>"));
    QVERIFY2(book.error().isEmpty(), qPrintable(book.error()));
}

void TestArtBook::putsInOtherDrawings()
{
    ArtFolder folder("one 32x24 plain glyph=@cross\n");
    folder.write("plain.svg", "<svg><g>{{glyph}}</g></svg>");
    folder.write("cross.svg",
                 "<?xml version=\"1.0\"?>\n<svg a=\"b\">\n<path d=\"{{width}}\"/>\n</svg>\n");
    QVERIFY(folder.isGood());
    ArtBook book(folder.path());
    QCOMPARE(book.svg(book.images()[0]), QStringLiteral("<svg><g><path d=\"32\"/></g></svg>"));
    QStringList read;
    for (const QString &source : book.sources())
        read.append(QFileInfo(source).fileName());
    QCOMPARE(read, QStringList({"palette.txt", "images.txt", "plain.svg", "cross.svg"}));
}

void TestArtBook::saysWhatIsWrong_data()
{
    QTest::addColumn<QByteArray>("images");
    QTest::addColumn<QByteArray>("drawing");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no size") << QByteArray("one plain\n") << QByteArray() << "images.txt:1:";
    QTest::newRow("bad size") << QByteArray("\none 32x plain\n") << QByteArray() << "images.txt:2:";
    QTest::newRow("bad value") << QByteArray("one 3x2 plain what\n") << QByteArray()
                               << "images.txt:1:";
    QTest::newRow("unknown name") << QByteArray("one 3x2 plain\n")
                                  << QByteArray("<svg>{{nothing}}</svg>")
                                  << "one: nothing is named \"nothing\"";
    QTest::newRow("no drawing") << QByteArray("one 3x2 other\n") << QByteArray() << "other.svg";
    QTest::newRow("no inner drawing") << QByteArray("one 3x2 plain glyph=@lost\n")
                                      << QByteArray("<svg>{{glyph}}</svg>") << "lost.svg";
    QTest::newRow("not a drawing") << QByteArray("one 3x2 plain glyph=@plain2\n")
                                   << QByteArray("<svg>{{glyph}}</svg>") << "plain2.svg: no svg";
}

void TestArtBook::saysWhatIsWrong()
{
    QFETCH(QByteArray, images);
    QFETCH(QByteArray, drawing);
    QFETCH(QString, expected);
    ArtFolder folder(images);
    folder.write("plain.svg", drawing);
    folder.write("plain2.svg", "a text");
    QVERIFY(folder.isGood());
    ArtBook book(folder.path());
    if (book.error().isEmpty())
        book.svg(book.images()[0]);
    QVERIFY2(book.error().contains(expected), qPrintable(book.error()));
}

void TestArtBook::fillsInStyleSheets()
{
    ArtFolder folder("one 3x2 plain\n");
    QVERIFY(folder.isGood());
    ArtBook book(folder.path());
    QCOMPARE(book.filledIn("QLabel{color:{{ink}};}", "a.qss"),
             QStringLiteral("QLabel{color:#27455d;}"));
    QVERIFY(book.error().isEmpty());
    book.filledIn("QLabel{color:{{inc}};}", "a.qss");
    QVERIFY(book.error().contains(QLatin1String("a.qss")));
}

QTEST_GUILESS_MAIN(TestArtBook)

#include "tst_art_book.moc"
