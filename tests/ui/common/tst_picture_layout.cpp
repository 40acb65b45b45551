#include "ui/common/picture_layout.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <random>

using zelvaro::layoutPicture;
using zelvaro::PictureLayout;
using zelvaro::zoomedIn;
using zelvaro::zoomedOut;

namespace {

const QList<int> steps{10, 20, 25, 40, 50, 60, 75, 100, 125, 150, 200, 300, 400, 500, 600, 800};

/// The ladder, found by counting upwards and downwards one percent at a time.
int nextUp(int zoom)
{
    if (zoom < 10)
        return zoom;
    for (int candidate = zoom + 1; candidate <= 800; ++candidate)
        if (steps.contains(candidate))
            return candidate;
    return 800;
}

int nextDown(int zoom)
{
    for (int candidate = std::min(zoom - 1, 800); candidate >= 10; --candidate)
        if (steps.contains(candidate))
            return candidate;
    return zoom;
}

/// Truncating division by counting, for small non-negative numbers.
int slowDivide(long long dividend, long long divisor)
{
    return static_cast<int>(
        std::floor(static_cast<long double>(dividend) / static_cast<long double>(divisor)));
}

struct Expected
{
    int zoom;
    int left, top, right, bottom;
};

/// The sizing rules written in another way: for areas that hold at least one pixel.
Expected slowLayout(int areaWidth, int areaHeight, int width, int height, int zoom)
{
    const int boxWidth = areaWidth - 30;
    const int boxHeight = areaHeight - 48;
    int shownWidth = slowDivide(1LL * zoom * width, 100);
    int shownHeight = slowDivide(1LL * zoom * height, 100);
    const bool fits = shownWidth <= boxWidth && shownHeight <= boxHeight;
    if (fits && (zoom * 1LL * width < 10000 || zoom * 1LL * height < 10000)) {
        zoom = nextUp(zoom);
        shownWidth = slowDivide(1LL * zoom * width, 100);
        shownHeight = slowDivide(1LL * zoom * height, 100);
    } else if (!fits) {
        const bool wide =
            static_cast<double>(width) / height > static_cast<double>(boxWidth) / boxHeight;
        shownWidth = wide ? boxWidth : slowDivide(1LL * width * boxHeight, height);
        shownHeight = wide ? slowDivide(1LL * height * boxWidth, width) : boxHeight;
        zoom = slowDivide(100LL * shownWidth, width);
    }
    const int freeWidth = boxWidth - shownWidth;
    const int freeHeight = boxHeight - shownHeight;
    // What cannot be halved stays on the right and below.
    const int left = 15 + (freeWidth >= 0 ? freeWidth / 2 : -(-freeWidth / 2));
    const int top = 15 + (freeHeight >= 0 ? freeHeight / 2 : -(-freeHeight / 2));
    return {zoom, left, top, left + shownWidth - 1, top + shownHeight - 1};
}

QRect corners(int left, int top, int right, int bottom)
{
    return {QPoint(left, top), QPoint(right, bottom)};
}

} // namespace

class TestPictureLayout : public QObject
{
    Q_OBJECT

private slots:
    void zoomListWalk();
    void zoomsBetweenStepsSnapInTheDirectionOfTheStep();
    void everyZoomAgreesWithCounting();
    void fullHdInAnAreaOf1000x700();
    void aTinyStreamIsShownOneStepLarger();
    void aPictureOfExactlyTheBoxFits();
    void anOddRemainderGoesRightAndBelow();
    void aTallPictureIsFittedByHeight();
    void withoutAPictureTheWholeBoxIsItsPlace_data();
    void withoutAPictureTheWholeBoxIsItsPlace();
    void theFrameSurroundsThePicture();
    void randomAreasAndStreamsAgreeWithASlowFormulation();
    void absurdSizesNeitherOverflowNorCrash();
};

void TestPictureLayout::zoomListWalk()
{
    QList<int> up;
    for (int zoom = 100; up.size() < 6;)
        up.append(zoom = zoomedIn(zoom));
    QCOMPARE(up, (QList<int>{125, 150, 200, 300, 400, 500}));

    QList<int> down;
    for (int zoom = 100; down.size() < 8;)
        down.append(zoom = zoomedOut(zoom));
    QCOMPARE(down, (QList<int>{75, 60, 50, 40, 25, 20, 10, 10}));

    QCOMPARE(zoomedIn(500), 600);
    QCOMPARE(zoomedIn(600), 800);
    QCOMPARE(zoomedIn(800), 800);
    QCOMPARE(zoomedIn(10), 20);
}

void TestPictureLayout::zoomsBetweenStepsSnapInTheDirectionOfTheStep()
{
    QCOMPARE(zoomedIn(130), 150);
    QCOMPARE(zoomedOut(130), 125);
    QCOMPARE(zoomedOut(110), 100);
    QCOMPARE(zoomedOut(900), 800);
    QCOMPARE(zoomedIn(9), 9);
    QCOMPARE(zoomedOut(9), 9);
    QCOMPARE(zoomedIn(0), 0);
    QCOMPARE(zoomedIn(-7), -7);
    QCOMPARE(zoomedOut(-7), -7);
}

void TestPictureLayout::everyZoomAgreesWithCounting()
{
    for (int zoom = -5; zoom <= 1000; ++zoom) {
        QCOMPARE(zoomedIn(zoom), nextUp(zoom));
        QCOMPARE(zoomedOut(zoom), nextDown(zoom));
    }
}

void TestPictureLayout::fullHdInAnAreaOf1000x700()
{
    const PictureLayout layout = layoutPicture({1000, 700}, {1920, 1080}, 100);
    QCOMPARE(layout.clientRect, corners(15, 15, 984, 666));
    QCOMPARE(layout.clientRect.size(), QSize(970, 652));
    QCOMPARE(layout.videoRect, corners(15, 68, 984, 612));
    QCOMPARE(layout.videoRect.size(), QSize(970, 545));
    QCOMPARE(layout.zoom, 50);
    QVERIFY(layout.fitted);
    QCOMPARE(layout.sourceRatio, 1920.0 / 1080.0);
    QCOMPARE(layout.areaRatio, 970.0 / 652.0);
}

void TestPictureLayout::aTinyStreamIsShownOneStepLarger()
{
    const PictureLayout layout = layoutPicture({1000, 700}, {64, 48}, 100);
    QCOMPARE(layout.zoom, 125);
    QCOMPARE(layout.videoRect.size(), QSize(80, 60));
    QCOMPARE(layout.videoRect.topLeft(), QPoint(15 + 445, 15 + 296));
    QVERIFY(!layout.fitted);

    // The larger step is not tested for fitting again.
    const PictureLayout cramped = layoutPicture({30 + 90, 48 + 50}, {90, 50}, 100);
    QCOMPARE(cramped.zoom, 125);
    QCOMPARE(cramped.videoRect.size(), QSize(112, 62));
    QCOMPARE(cramped.videoRect.topLeft(), QPoint(15 - 11, 15 - 6));

    QCOMPARE(layoutPicture({1000, 700}, {99, 500}, 100).zoom, 125);
    QCOMPARE(layoutPicture({1000, 700}, {100, 500}, 100).zoom, 100);
    QCOMPARE(layoutPicture({1000, 700}, {1, 1}, 800).zoom, 800);
}

void TestPictureLayout::aPictureOfExactlyTheBoxFits()
{
    const PictureLayout exact = layoutPicture({670, 408}, {640, 360}, 100);
    QCOMPARE(exact.zoom, 100);
    QCOMPARE(exact.videoRect, exact.clientRect);
    QVERIFY(!exact.fitted);

    const PictureLayout narrower = layoutPicture({669, 408}, {640, 360}, 100);
    QVERIFY(narrower.fitted);
    QCOMPARE(narrower.zoom, 99);
    QCOMPARE(narrower.videoRect.size(), QSize(639, 359));
}

void TestPictureLayout::anOddRemainderGoesRightAndBelow()
{
    const PictureLayout layout = layoutPicture({30 + 305, 48 + 207}, {300, 200}, 100);
    QCOMPARE(layout.videoRect, corners(17, 18, 316, 217));
}

void TestPictureLayout::aTallPictureIsFittedByHeight()
{
    const PictureLayout layout = layoutPicture({1000, 700}, {1080, 1920}, 100);
    QCOMPARE(layout.videoRect.size(), QSize(366, 652));
    QCOMPARE(layout.videoRect.topLeft(), QPoint(15 + 302, 15));
    QCOMPARE(layout.zoom, 33);
}

void TestPictureLayout::withoutAPictureTheWholeBoxIsItsPlace_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::newRow("none") << QSize();
    QTest::newRow("no width") << QSize(0, 480);
    QTest::newRow("no height") << QSize(640, 0);
    QTest::newRow("negative") << QSize(-640, -480);
}

void TestPictureLayout::withoutAPictureTheWholeBoxIsItsPlace()
{
    QFETCH(QSize, picture);
    const PictureLayout layout = layoutPicture({800, 600}, picture, 75);
    QVERIFY(!layout.hasPicture);
    QCOMPARE(layout.zoom, 75);
    QCOMPARE(layout.videoRect, corners(15, 15, 784, 566));
    QCOMPARE(layout.videoRect, layout.clientRect);
    QCOMPARE(layout.frameRect, corners(9, 10, 791, 592));
}

void TestPictureLayout::theFrameSurroundsThePicture()
{
    const PictureLayout layout = layoutPicture({1000, 700}, {640, 360}, 100);
    QCOMPARE(layout.videoRect, corners(180, 161, 819, 520));
    QCOMPARE(layout.frameRect, corners(174, 156, 826, 546));
}

void TestPictureLayout::randomAreasAndStreamsAgreeWithASlowFormulation()
{
    std::mt19937 random(20240305);
    const auto between = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int i = 0; i < 300; ++i) {
        // Half of the areas are hardly larger than their margins.
        const QSize area = i % 2 ? QSize(between(31, 90), between(49, 120))
                                 : QSize(between(31, 4000), between(49, 3000));
        const QSize picture = i % 3 ? QSize(between(1, 4096), between(1, 4096))
                                    : QSize(between(1, 120), between(1, 120));
        const int zoom = i % 5 ? steps.at(between(0, 15)) : between(1, 900);

        const PictureLayout layout = layoutPicture(area, picture, zoom);
        const Expected expected =
            slowLayout(area.width(), area.height(), picture.width(), picture.height(), zoom);
        const QByteArray where = QStringLiteral("%1x%2 in %3x%4 at %5")
                                     .arg(picture.width())
                                     .arg(picture.height())
                                     .arg(area.width())
                                     .arg(area.height())
                                     .arg(zoom)
                                     .toLatin1();
        QVERIFY2(layout.zoom == expected.zoom, where);
        QVERIFY2(layout.videoRect ==
                     corners(expected.left, expected.top, expected.right, expected.bottom),
                 where);
        QVERIFY2(layout.frameRect == corners(expected.left - 6, expected.top - 5,
                                             expected.right + 7, expected.bottom + 26),
                 where);
    }
}

void TestPictureLayout::absurdSizesNeitherOverflowNorCrash()
{
    constexpr int huge = std::numeric_limits<int>::max();
    const QList<int> sides{0, 1, 7, 29, 30, 31, 47, 48, 49, 16777215};
    const QList<int> pictures{1, 2, 4096, 65535, huge};
    for (int width : sides) {
        for (int height : sides) {
            for (int pictureWidth : pictures) {
                for (int pictureHeight : pictures) {
                    for (int zoom : {-3, 0, 1, 10, 100, 800}) {
                        const PictureLayout layout =
                            layoutPicture({width, height}, {pictureWidth, pictureHeight}, zoom);
                        QVERIFY(std::abs(layout.frameRect.width()) <= (1 << 24) + 13);
                        QVERIFY(std::abs(layout.frameRect.height()) <= (1 << 24) + 31);
                        QVERIFY(zoomedIn(layout.zoom) >= layout.zoom || layout.zoom > 800);
                    }
                }
            }
        }
    }
}

QTEST_GUILESS_MAIN(TestPictureLayout)
#include "tst_picture_layout.moc"
