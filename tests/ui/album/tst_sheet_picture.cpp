#include "tests/ui/album/album_fixture.h"
#include "ui/album/sheet_picture.h"
#include "ui/common/style_url.h"

#include <QFrame>
#include <QImageWriter>
#include <QPixmap>

class TestSheetPicture : public QObject
{
    Q_OBJECT

private slots:
    void theSheetTakesTheSmallPicture();
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

} // namespace

// One pixel of white in a large black picture: drawn at its own size it stays a dot; drawn from a
// small picture it is a blur, or gone.
void TestSheetPicture::theSheetTakesTheSmallPicture()
{
    AlbumFixture album;
    QDir().mkpath(album.root() + "/A");
    const QString file = album.path("A", "dots.png");
    QImage image(800, 600, QImage::Format_RGB32);
    for (int y = 0; y < 600; ++y)
        for (int x = 0; x < 800; ++x)
            image.setPixel(x, y, (x + y) % 2 ? 0xffffffff : 0xff000000);
    QVERIFY(image.save(file, "PNG"));
    QFrame frame;
    frame.setObjectName("framePicture");
    frame.resize(800, 600);
    zelvaro::setPictureSheet(&frame, sheetOf(file), file, {80, 60});
    const QColor middle = frame.grab().toImage().pixelColor(400, 300);
    QVERIFY2(middle.red() > 60 && middle.red() < 200, qPrintable(middle.name()));
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
