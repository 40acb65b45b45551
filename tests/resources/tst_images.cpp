#include "image_references.h"
#include "resources/palette.h"
#include "resources/resources.h"

#include <QDirIterator>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QSet>
#include <QtTest>

namespace {

const QString sourceFolder = QStringLiteral(ZELVARO_SOURCE_DIR);

/// A frame with borders: one file, cut by the style sheets at these pixels (top right bottom left).
struct Frame
{
    int pixelsPerBorder;
    QList<int> cuts;
};

const QMap<QString, Frame> &frames()
{
    static const QMap<QString, Frame> table{
        {"mainframe", {2, {8, 8, 8, 8}}},
        {"messageframe", {2, {36, 32, 40, 32}}},
        {"settingframe", {2, {36, 32, 40, 32}}},
        {"dlgctrl/button_default", {2, {12, 12, 12, 12}}},
        {"dlgctrl/button_hover", {2, {12, 12, 12, 12}}},
        {"dlgctrl/button_down", {2, {12, 12, 12, 12}}},
        {"dlgctrl/button_disabled", {2, {12, 12, 12, 12}}},
        {"dlgctrl/button_focus", {2, {12, 12, 12, 12}}},
        {"dlgctrl/search_default", {2, {12, 12, 12, 64}}},
        {"dlgctrl/search_hover", {2, {12, 12, 12, 64}}},
        {"dlgctrl/search_down", {2, {12, 12, 12, 64}}},
        {"dlgctrl/search_disabled", {2, {12, 12, 12, 64}}},
        {"dlgctrl/search_focus", {2, {12, 12, 12, 64}}},
        {"dlgctrl/text_default", {2, {10, 12, 10, 12}}},
        {"dlgctrl/text_hover", {2, {10, 12, 10, 12}}},
        {"dlgctrl/text_focus", {2, {10, 12, 10, 12}}},
        {"dlgctrl/text_disabled", {2, {10, 12, 10, 12}}},
        {"cameraitem/cameraitemframe_default", {2, {8, 12, 14, 10}}},
        {"cameraitem/cameraitemframe_hover", {2, {8, 12, 14, 10}}},
        {"panelbtn/buttonpanelbk", {2, {12, 12, 12, 12}}},
        {"playcamera/playcameraframe", {1, {6, 6, 6, 6}}},
        {"playcamera/videoframe", {1, {5, 7, 8, 6}}},
        {"multilive/multiliveitemframe_default", {1, {4, 6, 7, 5}}},
        {"multilive/multiliveitemframe_hover", {1, {4, 6, 7, 5}}},
    };
    return table;
}

QString path(const QString &name)
{
    return QStringLiteral(":/images/%1.png").arg(name);
}

/// Names of all images, the "@2x" ones left out.
QStringList allImages()
{
    QStringList names;
    QDirIterator files(QStringLiteral(":/images"), QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString name = files.next().mid(9).chopped(4);
        if (!name.endsWith(QLatin1String("@2x")))
            names.append(name);
    }
    names.sort();
    return names;
}

QString shortName(const QString &file)
{
    return file.mid(sourceFolder.size() + 1);
}

} // namespace

class TestImages : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyReferenceIsInTheTree();
    void noImageIsUnused();
    void everyImageHasBothDensities();
    void denseImagesAreNotBlownUp();
    void framesAreLargerThanTheirBorders();
    void styleSheetsCutFramesAtTheirBorders();
    void imagesStretchedWholeAreNotCut();
    void statesDiffer_data();
    void statesDiffer();
    void statesDifferWithoutColour_data();
    void statesDifferWithoutColour();
    void textPairsHaveContrast();
    void contrastIsThatOfTheDefinition();
    void brokenPaletteSaysWhere();

private:
    QVector<ImageReference> m_references;
};

void TestImages::initTestCase()
{
    zelvaro::initResources();
    m_references = imageReferences(sourceFolder);
    QVERIFY2(m_references.size() > 50, "the sources were not found");
}

void TestImages::everyReferenceIsInTheTree()
{
    for (const ImageReference &reference : qAsConst(m_references)) {
        const QStringList names = imagesMeant(reference.name);
        QVERIFY2(!names.isEmpty(), qPrintable(reference.name + " in " + shortName(reference.file)));
        for (const QString &name : names)
            QVERIFY2(!QImage(path(name)).isNull(),
                     qPrintable(name + " in " + shortName(reference.file)));
    }
}

void TestImages::noImageIsUnused()
{
    QSet<QString> used;
    for (const ImageReference &reference : qAsConst(m_references))
        for (const QString &name : imagesMeant(reference.name))
            used.insert(name);
    QStringList unused;
    for (const QString &name : allImages())
        if (!used.contains(name))
            unused.append(name);
    QVERIFY2(unused.isEmpty(), qPrintable(unused.join(", ")));
}

void TestImages::everyImageHasBothDensities()
{
    for (const QString &name : allImages()) {
        const QImage plain(path(name));
        const QImage dense(path(name + QLatin1String("@2x")));
        if (frames().contains(name)) {
            QVERIFY2(dense.isNull(), qPrintable(name + " would be cut wrongly on a dense screen"));
            continue;
        }
        QVERIFY2(!dense.isNull(), qPrintable(name));
        QCOMPARE(dense.size(), plain.size() * 2);
    }
}

/// A 2x image that only repeats the pixels of the 1x one is no better than it.
void TestImages::denseImagesAreNotBlownUp()
{
    for (const char *name : {"panelbtn/backbtn_default", "toolbarbtn/SetUp", "title",
                             "cameraitem/connected", "photomgr/cameraicon"}) {
        const QImage plain(path(QLatin1String(name)));
        const QImage dense(path(QStringLiteral("%1@2x").arg(QLatin1String(name))));
        QVERIFY2(plain.scaled(dense.size()).convertToFormat(QImage::Format_ARGB32) !=
                     dense.convertToFormat(QImage::Format_ARGB32),
                 name);
    }
}

void TestImages::framesAreLargerThanTheirBorders()
{
    for (auto frame = frames().cbegin(); frame != frames().cend(); ++frame) {
        const QImage image(path(frame.key()));
        QVERIFY2(!image.isNull(), qPrintable(frame.key()));
        const QList<int> &cuts = frame->cuts;
        QVERIFY2(image.height() > cuts[0] + cuts[2], qPrintable(frame.key()));
        QVERIFY2(image.width() > cuts[1] + cuts[3], qPrintable(frame.key()));
    }
}

void TestImages::styleSheetsCutFramesAtTheirBorders()
{
    for (const ImageReference &reference : qAsConst(m_references)) {
        for (const QString &name : imagesMeant(reference.name)) {
            const auto frame = frames().constFind(name);
            if (frame == frames().cend())
                continue;
            const bool byBorderWidths = reference.cuts.isEmpty() && frame->pixelsPerBorder == 1;
            QVERIFY2(byBorderWidths || reference.cuts == frame->cuts,
                     qPrintable(name + " in " + shortName(reference.file)));
        }
    }
}

void TestImages::imagesStretchedWholeAreNotCut()
{
    for (const ImageReference &reference : qAsConst(m_references)) {
        for (const QString &name : imagesMeant(reference.name)) {
            if (!frames().contains(name))
                QVERIFY2(reference.cuts.isEmpty(),
                         qPrintable(name + " in " + shortName(reference.file)));
        }
    }
}

void TestImages::statesDiffer_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    const QStringList families{"sysbtn/menubtn",     "sysbtn/minbtn",      "sysbtn/maxbtn",
                               "sysbtn/restorebtn",  "sysbtn/closebtn",    "cameraitem/closebtn",
                               "cameraitem/playbtn", "cameraitem/menubtn", "dlgctrl/button",
                               "dlgctrl/search"};
    for (const QString &family : families) {
        for (const auto &pair : {std::pair("_default", "_hover"), std::pair("_default", "_down"),
                                 std::pair("_hover", "_down")})
            QTest::addRow("%s%s%s", qPrintable(family), pair.first, pair.second)
                << family + pair.first << family + pair.second;
    }
    for (const char *name : {"cameramgrbtn", "multilivebtn", "videobtn", "albumbtn"})
        QTest::newRow(name) << QStringLiteral("toolbarbtn/%1").arg(name)
                            << QStringLiteral("toolbarbtn/%1_pressed").arg(name);
    QTest::newRow("SetUp") << "toolbarbtn/SetUp"
                           << "toolbarbtn/Setupbtn_pressed";
    QTest::newRow("record") << "panelbtn/recordbtn_default"
                            << "panelbtn/recordbtn_down";
    QTest::newRow("talk") << "panelbtn/outvolumebtn_default"
                          << "panelbtn/outvolumebtn_down";
    QTest::newRow("sound") << "panelbtn/volumebtn_checked"
                           << "panelbtn/volumebtn_unchecked";
    QTest::newRow("sound hover") << "panelbtn/volumebtn_checked"
                                 << "panelbtn/volumebtn_checkedhover";
    QTest::newRow("play") << "panelbtn/playbtn"
                          << "panelbtn/pausebtn";
    QTest::newRow("status") << "cameraitem/connected"
                            << "cameraitem/disconnected";
    QTest::newRow("list") << "photomgr/cameraicon"
                          << "photomgr/cameraicon_down";
    QTest::newRow("tile") << "cameraitem/cameraitemframe_default"
                          << "cameraitem/cameraitemframe_hover";
    QTest::newRow("grid tile") << "multilive/multiliveitemframe_default"
                               << "multilive/multiliveitemframe_hover";
    QTest::newRow("disabled button") << "dlgctrl/button_default"
                                     << "dlgctrl/button_disabled";
    QTest::newRow("focused button") << "dlgctrl/button_default"
                                    << "dlgctrl/button_focus";
    QTest::newRow("disabled edit") << "dlgctrl/text_default"
                                   << "dlgctrl/text_disabled";
    QTest::newRow("focused edit") << "dlgctrl/text_default"
                                  << "dlgctrl/text_focus";
    QTest::newRow("choice") << "multilive/selectcameraitembk_default"
                            << "multilive/selectcameraitembk_hover";
    QTest::newRow("check box") << "style/check_off"
                               << "style/check_on";
}

void TestImages::statesDiffer()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QVERIFY(QImage(path(first)) != QImage(path(second)));
    QCOMPARE(QImage(path(first)).size(), QImage(path(second)).size());
}

void TestImages::statesDifferWithoutColour_data()
{
    statesDiffer_data();
}

/// In grey, on the background of the chrome, a clear share of the pixels must distinguish states.
void TestImages::statesDifferWithoutColour()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    const auto grey = [](const QString &name) {
        const QImage image(path(name));
        QImage flat(image.size(), QImage::Format_RGB32);
        flat.fill(QColor(0xe3, 0xec, 0xf4));
        QPainter painter(&flat);
        painter.drawImage(0, 0, image);
        painter.end();
        return flat.convertToFormat(QImage::Format_Grayscale8);
    };
    const QImage a = grey(first);
    const QImage b = grey(second);
    int different = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            if (qAbs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) >= 12)
                ++different;
    }
    const double share = double(different) / (a.width() * a.height());
    QVERIFY2(share >= 0.04, qPrintable(QStringLiteral("%1 %").arg(share * 100)));
}

void TestImages::textPairsHaveContrast()
{
    QString error;
    const auto palette = zelvaro::Palette::read(QStringLiteral(":/style/palette.txt"), &error);
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QVERIFY(palette.textPairs.size() >= 20);
    for (const auto &pair : palette.textPairs) {
        const double found =
            zelvaro::contrast(palette.colours[pair.text], palette.colours[pair.background]);
        QVERIFY2(
            found >= 4.5,
            qPrintable(QStringLiteral("%1 on %2: %3").arg(pair.text, pair.background).arg(found)));
    }
}

void TestImages::contrastIsThatOfTheDefinition()
{
    QCOMPARE(zelvaro::contrast(Qt::white, Qt::black), 21.0);
    QCOMPARE(zelvaro::contrast(Qt::black, Qt::white), 21.0);
    QCOMPARE(zelvaro::contrast(Qt::red, Qt::red), 1.0);
    QVERIFY(qAbs(zelvaro::contrast(QColor(0x77, 0x77, 0x77), Qt::white) - 4.48) < 0.01);
}

void TestImages::brokenPaletteSaysWhere()
{
    QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("palette.txt"));
    const auto errorOf = [&](const QByteArray &text) {
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            return QStringLiteral("cannot write");
        file.close();
        QString error;
        zelvaro::Palette::read(name, &error);
        return error.remove(name);
    };
    QCOMPARE(errorOf("# a comment\n\nink #27455d\nwhite #ffffff\ntext ink on white\n"), QString());
    QVERIFY(errorOf("ink #27455d\nink27455d\n").startsWith(QLatin1String(":2:")));
    QVERIFY(errorOf("ink #27455d\ntext ink on nothing\n").startsWith(QLatin1String(":2:")));
    QVERIFY(errorOf("ink notacolour\n").startsWith(QLatin1String(":1:")));
}

QTEST_GUILESS_MAIN(TestImages)

#include "tst_images.moc"
