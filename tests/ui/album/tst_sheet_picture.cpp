#include "tests/ui/album/album_fixture.h"
#include "ui/common/sheet_picture.h"
#include "ui/common/style_url.h"

#include <QFrame>
#include <QImageWriter>
#include <QPixmap>
#include <QPixmapCache>

class TestSheetPicture : public QObject
{
    Q_OBJECT

private slots:
    void theSheetTakesTheSmallPicture();
    void aPictureLargerThanTheCacheIsTakenSmallToo();
    void theFileItselfStaysAtItsSize();
    void noPictureDrawsNothing();
    void sizesComeFromTheHeader();
    void aPictureTooLargeToHoldIsLeftOut_data();
    void aPictureTooLargeToHoldIsLeftOut();
};

namespace {

QString sheetOf(const QString &file)
{
    return "QFrame#framePicture{border-image:url(" + zelvaro::styleUrl(file) + ");}";
}

// A chequer board of single pixels: drawn at its own size it stays one; drawn from a small picture
// it is grey.
bool drawnSmall(const AlbumFixture &album, QSize size, QSize shown)
{
    QDir().mkpath(album.root() + "/A");
    const QString file = album.path("A", "dots.png");
    QImage image(size, QImage::Format_Grayscale8);
    for (int y = 0; y < size.height(); ++y) {
        uchar *line = image.scanLine(y);
        for (int x = 0; x < size.width(); ++x)
            line[x] = (x + y) % 2 ? 0xff : 0;
    }
    if (!image.save(file, "PNG"))
        return false;
    QFrame frame;
    frame.setObjectName("framePicture");
    frame.resize(size);
    zelvaro::setPictureSheet(&frame, sheetOf(file), file, shown);
    QImage middle(8, 8, QImage::Format_RGB32);
    middle.fill(Qt::red);
    frame.render(&middle, {}, QRegion(size.width() / 2, size.height() / 2, 8, 8));
    const int level = qGray(middle.pixel(4, 4));
    return level > 60 && level < 200;
}

} // namespace

void TestSheetPicture::theSheetTakesTheSmallPicture()
{
    AlbumFixture album;
    QVERIFY(drawnSmall(album, {800, 600}, {80, 60}));
}

// As on a screen of 4K: what the cache of the process holds by itself are 2.6 megapixels.
void TestSheetPicture::aPictureLargerThanTheCacheIsTakenSmallToo()
{
    AlbumFixture album;
    const int limit = QPixmapCache::cacheLimit();
    QVERIFY(drawnSmall(album, {4400, 3300}, {2200, 1650}));
    QCOMPARE(QPixmapCache::cacheLimit(), limit);
}

void TestSheetPicture::theFileItselfStaysAtItsSize()
{
    AlbumFixture album;
    const QString file = album.writePicture("A", "a.jpg", Qt::red, {800, 600});
    QFrame frame;
    frame.setObjectName("framePicture");
    zelvaro::setPictureSheet(&frame, sheetOf(file), file, {80, 60});
    QCOMPARE(QPixmap(file).size(), QSize(800, 600));
    QVERIFY(alike(centreOf(&frame), Qt::red));
}

void TestSheetPicture::noPictureDrawsNothing()
{
    AlbumFixture album;
    const QString file = album.write("A", "a.jpg", "text");
    QFrame frame;
    frame.setObjectName("framePicture");
    frame.setAutoFillBackground(true);
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::yellow);
    frame.setPalette(palette);
    for (const QString &path : {file, album.path("A", "missing.jpg"), QString()}) {
        zelvaro::setPictureSheet(&frame, sheetOf(path), path, {80, 60});
        const QImage image = frame.grab().toImage();
        QVERIFY(!image.isNull());
        QCOMPARE(image.pixelColor(0, 0), image.pixelColor(image.width() / 2, image.height() / 2));
    }
}

void TestSheetPicture::sizesComeFromTheHeader()
{
    AlbumFixture album;
    QCOMPARE(zelvaro::pictureSize(album.writePicture("A", "a.jpg", Qt::red, {321, 123})),
             QSize(321, 123));
    QCOMPARE(zelvaro::pictureSize(album.write("A", "b.jpg", "text")), QSize(0, 0));
    QCOMPARE(zelvaro::pictureSize(album.path("A", "missing.jpg")), QSize(0, 0));
    QCOMPARE(zelvaro::pictureSize({}), QSize(0, 0));
}

void TestSheetPicture::aPictureTooLargeToHoldIsLeftOut_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<bool>("progressive");
    QTest::addColumn<bool>("drawn");
    QTest::newRow("one scan") << QByteArray("JPG") << false << true;
    QTest::newRow("several scans") << QByteArray("JPG") << true << false;
    QTest::newRow("PNG") << QByteArray("PNG") << false << false;
}

void TestSheetPicture::aPictureTooLargeToHoldIsLeftOut()
{
    QFETCH(QByteArray, format);
    QFETCH(bool, progressive);
    QFETCH(bool, drawn);
    AlbumFixture album;
    const QString file = album.write("A", "large.jpg");
    QImage image(6000, 5500, QImage::Format_Grayscale8);
    image.fill(Qt::gray);
    QImageWriter writer(file, format);
    writer.setProgressiveScanWrite(progressive);
    QVERIFY(writer.write(image));
    QFrame frame;
    frame.setObjectName("framePicture");
    frame.setAutoFillBackground(true);
    QPalette yellow;
    yellow.setColor(QPalette::Window, Qt::yellow);
    frame.setPalette(yellow);
    zelvaro::setPictureSheet(&frame, sheetOf(file), file, {80, 60});
    QCOMPARE(alike(centreOf(&frame), Qt::gray), drawn);
    QCOMPARE(alike(centreOf(&frame), Qt::yellow), !drawn);
    QCOMPARE(zelvaro::pictureSize(file), image.size());
}

QTEST_MAIN(TestSheetPicture)
#include "tst_sheet_picture.moc"
