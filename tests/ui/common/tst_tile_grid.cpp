#include "ui/common/tile_grid.h"

#include <QGridLayout>
#include <QtTest>

class TestTileGrid : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void tilesGoRowByRow();
    void theColumnAndTheRowBehindTheTilesTakeTheSlack();
    void trailingWidgetsDoNotCountForTheSlackRow();
    void fewerColumnsThanOneAreOne();
    void placingAgainGivesBackTheOldSlack();
    void takingOutDeletesNothing();
    void aTileDeletedInTheGridIsPassedOver();
    void anEmptyGridHasItsSlackToo();
    void tilesArePackedAtTheTopLeft();

private:
    QWidgetList makeTiles(int count);
    QPoint cellOf(QWidget *tile) const; // (column, row)

    std::unique_ptr<QWidget> m_page;
    QGridLayout *m_layout = nullptr;
    std::unique_ptr<zelvaro::TileGrid> m_grid;
};

void TestTileGrid::init()
{
    m_page = std::make_unique<QWidget>();
    m_layout = new QGridLayout(m_page.get());
    m_layout->setSpacing(10);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_grid = std::make_unique<zelvaro::TileGrid>(m_layout);
}

QWidgetList TestTileGrid::makeTiles(int count)
{
    QWidgetList tiles;
    for (int i = 0; i < count; ++i) {
        tiles.append(new QWidget(m_page.get()));
        tiles.last()->setFixedSize(50, 40);
    }
    return tiles;
}

QPoint TestTileGrid::cellOf(QWidget *tile) const
{
    const int index = m_layout->indexOf(tile);
    if (index < 0)
        return {-1, -1};
    int row = -1, column = -1, rowSpan = 0, columnSpan = 0;
    m_layout->getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    return {column, row};
}

void TestTileGrid::tilesGoRowByRow()
{
    const QWidgetList tiles = makeTiles(9);
    m_grid->place(tiles, 4);
    for (int i = 0; i < 9; ++i) {
        QCOMPARE(cellOf(tiles.at(i)), QPoint(i % 4, i / 4));
        QCOMPARE(m_layout->itemAt(m_layout->indexOf(tiles.at(i)))->alignment(),
                 Qt::AlignLeft | Qt::AlignTop);
    }
    QCOMPARE(m_grid->placed().size(), 9);
}

void TestTileGrid::theColumnAndTheRowBehindTheTilesTakeTheSlack()
{
    m_grid->place(makeTiles(9), 4);
    QCOMPARE(m_layout->columnStretch(4), 10);
    QCOMPARE(m_layout->rowStretch(3), 10);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(m_layout->columnStretch(i), 0);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(m_layout->rowStretch(i), 0);
}

void TestTileGrid::trailingWidgetsDoNotCountForTheSlackRow()
{
    // Seven cameras and an add button in four columns: the button ends row 1, row 2 has the slack.
    m_grid->place(makeTiles(8), 4, 1);
    QCOMPARE(m_layout->rowStretch(2), 10);
    // Eight cameras: the button begins row 2.
    m_grid->place(makeTiles(9), 4, 1);
    QCOMPARE(m_layout->rowStretch(2), 0);
    QCOMPARE(m_layout->rowStretch(3), 10);
}

void TestTileGrid::fewerColumnsThanOneAreOne()
{
    const QWidgetList tiles = makeTiles(2);
    m_grid->place(tiles, 0);
    QCOMPARE(cellOf(tiles.at(1)), QPoint(0, 1));
    m_grid->place(tiles, -3);
    QCOMPARE(cellOf(tiles.at(1)), QPoint(0, 1));
    QCOMPARE(m_layout->columnStretch(1), 10);
}

void TestTileGrid::placingAgainGivesBackTheOldSlack()
{
    const QWidgetList tiles = makeTiles(6);
    m_grid->place(tiles, 2);
    m_grid->place(tiles, 5);
    QCOMPARE(m_layout->count(), 6);
    QCOMPARE(cellOf(tiles.at(5)), QPoint(0, 1));
    QCOMPARE(m_layout->columnStretch(2), 0);
    QCOMPARE(m_layout->columnStretch(5), 10);
    QCOMPARE(m_layout->rowStretch(4), 0);
    QCOMPARE(m_layout->rowStretch(2), 10);
}

void TestTileGrid::takingOutDeletesNothing()
{
    const QWidgetList tiles = makeTiles(3);
    m_grid->place(tiles, 2);
    QPointer<QWidget> first = tiles.first();
    m_grid->takeOut();
    QVERIFY(first);
    QCOMPARE(m_layout->count(), 0);
    QVERIFY(m_grid->placed().isEmpty());
    QCOMPARE(m_layout->columnStretch(2), 0);
}

void TestTileGrid::aTileDeletedInTheGridIsPassedOver()
{
    QWidgetList tiles = makeTiles(3);
    m_grid->place(tiles, 2);
    delete tiles.takeAt(1);
    m_grid->place(tiles, 2);
    QCOMPARE(m_layout->count(), 2);
    QCOMPARE(cellOf(tiles.at(1)), QPoint(1, 0));
}

void TestTileGrid::anEmptyGridHasItsSlackToo()
{
    m_grid->place({}, 4);
    QCOMPARE(m_layout->count(), 0);
    QCOMPARE(m_layout->columnStretch(4), 10);
    QCOMPARE(m_layout->rowStretch(1), 10);
}

void TestTileGrid::tilesArePackedAtTheTopLeft()
{
    const QWidgetList tiles = makeTiles(5);
    m_grid->place(tiles, 3);
    m_page->resize(600, 500);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
    QCOMPARE(tiles.at(0)->pos(), QPoint(0, 0));
    QCOMPARE(tiles.at(2)->pos(), QPoint(120, 0));
    QCOMPARE(tiles.at(3)->pos(), QPoint(0, 50));
}

QTEST_MAIN(TestTileGrid)
#include "tst_tile_grid.moc"
