#include "ui/live/multi_live_grid.h"

#include <QtTest>

#include <cmath>
#include <random>

using zelvaro::GridShape;
using zelvaro::gridShape;

namespace {

/// The widest tile of 4:3 in a cell, found by trying each width.
int widestTile(int cellWidth, int cellHeight)
{
    // A cell that is too low for its width is fitted by height, which cuts off the fraction.
    if (4.0 / 3.0 > static_cast<double>(cellWidth) / cellHeight)
        return cellWidth;
    int width = 0;
    while ((width + 1) * 3LL <= cellHeight * 4LL)
        ++width;
    return width;
}

} // namespace

class TestMultiLiveGrid : public QObject
{
    Q_OBJECT

private slots:
    void knownShapes_data();
    void knownShapes();
    void withoutTilesTheShapeIsTheWholeArea();
    void onATieTheShapeWithMoreRowsWins();
    void randomShapesAgreeWithTryingAll();
    void everyTileHasAPlace();
    void tinyAreasDoNotCrash();
};

void TestMultiLiveGrid::knownShapes_data()
{
    QTest::addColumn<QSize>("area");
    QTest::addColumn<int>("tiles");
    QTest::addColumn<QPoint>("rowsColumns");
    QTest::addColumn<QSize>("cell");
    const QSize area(1000, 700);
    QTest::newRow("1") << area << 1 << QPoint(1, 1) << QSize(933, 700);
    QTest::newRow("2") << area << 2 << QPoint(1, 2) << QSize(500, 375);
    QTest::newRow("3") << area << 3 << QPoint(2, 2) << QSize(466, 350);
    QTest::newRow("4") << area << 4 << QPoint(2, 2) << QSize(466, 350);
    QTest::newRow("6") << area << 6 << QPoint(2, 3) << QSize(333, 249);
    QTest::newRow("9") << area << 9 << QPoint(3, 3) << QSize(310, 233);
    QTest::newRow("16") << area << 16 << QPoint(4, 4) << QSize(233, 175);
    QTest::newRow("one in a tall area") << QSize(300, 900) << 1 << QPoint(1, 1) << QSize(300, 225);
    QTest::newRow("three in a tall area")
        << QSize(300, 900) << 3 << QPoint(3, 1) << QSize(300, 225);
}

void TestMultiLiveGrid::knownShapes()
{
    QFETCH(QSize, area);
    QFETCH(int, tiles);
    QFETCH(QPoint, rowsColumns);
    QFETCH(QSize, cell);
    const GridShape shape = gridShape(area, tiles);
    QCOMPARE(QPoint(shape.rows, shape.columns), rowsColumns);
    QCOMPARE(QSize(shape.width, shape.height), cell);
}

void TestMultiLiveGrid::withoutTilesTheShapeIsTheWholeArea()
{
    const GridShape shape = gridShape({1000, 700}, 0);
    QCOMPARE(shape.rows, 1);
    QCOMPARE(shape.columns, 1);
    QCOMPARE(QSize(shape.width, shape.height), QSize(1000, 700));
}

void TestMultiLiveGrid::onATieTheShapeWithMoreRowsWins()
{
    // 1 row of 2: cells of 400x600 give 400. 2 rows of 1: cells of 800x300 give 400 as well.
    const GridShape shape = gridShape({800, 600}, 2);
    QCOMPARE(shape.rows, 2);
    QCOMPARE(shape.columns, 1);
    QCOMPARE(shape.width, 400);
    QCOMPARE(shape.height, 300);
}

void TestMultiLiveGrid::randomShapesAgreeWithTryingAll()
{
    std::mt19937 random(11);
    const auto between = [&random](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int i = 0; i < 300; ++i) {
        const QSize area(between(200, 2600), between(150, 1500));
        const int tiles = between(1, 100);
        // Rows are added as long as that does not make the tiles narrower.
        int bestRows = 0;
        int bestWidth = 0;
        for (int rows = 1; rows <= tiles; ++rows) {
            const int columns = static_cast<int>(std::ceil(static_cast<double>(tiles) / rows));
            const int width = widestTile(area.width() / columns, area.height() / rows);
            if (width < bestWidth)
                break;
            bestRows = rows;
            bestWidth = width;
        }
        const GridShape shape = gridShape(area, tiles);
        const QByteArray where = QStringLiteral("%1 tiles in %2x%3")
                                     .arg(tiles)
                                     .arg(area.width())
                                     .arg(area.height())
                                     .toLatin1();
        QVERIFY2(shape.rows == bestRows, where);
        QVERIFY2(shape.width == bestWidth, where);
        QVERIFY2(std::abs(shape.width * 3 - shape.height * 4) <= 4, where);
        QVERIFY2(shape.height <= area.height() / shape.rows, where);
    }
}

void TestMultiLiveGrid::everyTileHasAPlace()
{
    for (int tiles = 1; tiles <= 100; ++tiles) {
        const GridShape shape = gridShape({1280, 720}, tiles);
        QVERIFY(shape.rows * shape.columns >= tiles);
        QVERIFY((shape.rows - 1) * shape.columns < tiles);
    }
}

void TestMultiLiveGrid::tinyAreasDoNotCrash()
{
    for (int width : {0, 1, 5}) {
        for (int height : {0, 1, 5}) {
            for (int tiles : {0, 1, 3, 100}) {
                const GridShape shape = gridShape({width, height}, tiles);
                QVERIFY(shape.rows >= 1);
                QVERIFY(shape.columns >= 1);
                QVERIFY(shape.rows * shape.columns >= tiles);
                QVERIFY(shape.width >= 0 && shape.height >= 0);
            }
        }
    }
}

QTEST_GUILESS_MAIN(TestMultiLiveGrid)
#include "tst_multi_live_grid.moc"
