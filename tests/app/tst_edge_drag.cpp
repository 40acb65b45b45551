#include "app/edge_drag.h"

#include <QTest>

using zelvaro::Edge;

Q_DECLARE_METATYPE(zelvaro::Edge)

namespace {

// Left 100, top 200, right 899, bottom 799.
constexpr QRect windowRect(100, 200, 800, 600);
constexpr zelvaro::DragLimits sizeLimits{QSize(1280, 760), QSize(400, 300)};

QRect dragged(Edge edge, QPoint pointer, zelvaro::DragLimits limits = sizeLimits)
{
    return zelvaro::draggedTo(edge, windowRect, windowRect, pointer, limits);
}

} // namespace

class TestEdgeDrag : public QObject
{
    Q_OBJECT

private slots:
    void zones_data();
    void zones();
    void cursors();
    void draggingMovesTheEdgeToThePointer_data();
    void draggingMovesTheEdgeToThePointer();
    void sizesStayBetweenSmallestAndLargest_data();
    void sizesStayBetweenSmallestAndLargest();
    void leftAndTopStayBelowTheWidgetsMinimum();
    void theEdgesThatAreNotDraggedComeFromNow();
};

void TestEdgeDrag::zones_data()
{
    QTest::addColumn<QPoint>("pointer");
    QTest::addColumn<Edge>("edge");
    QTest::newRow("middle") << QPoint(500, 500) << Edge::None;
    QTest::newRow("top first row") << QPoint(500, 200) << Edge::Top;
    QTest::newRow("top last row") << QPoint(500, 206) << Edge::Top;
    QTest::newRow("below top") << QPoint(500, 207) << Edge::None;
    QTest::newRow("above top") << QPoint(500, 199) << Edge::None;
    QTest::newRow("bottom first row") << QPoint(500, 793) << Edge::Bottom;
    QTest::newRow("bottom last row") << QPoint(500, 799) << Edge::Bottom;
    QTest::newRow("above bottom") << QPoint(500, 792) << Edge::None;
    QTest::newRow("below bottom") << QPoint(500, 800) << Edge::None;
    QTest::newRow("left first column") << QPoint(100, 500) << Edge::Left;
    QTest::newRow("left last column") << QPoint(102, 500) << Edge::Left;
    QTest::newRow("right of left") << QPoint(103, 500) << Edge::None;
    QTest::newRow("beyond left") << QPoint(99, 500) << Edge::None;
    QTest::newRow("right first column") << QPoint(897, 500) << Edge::Right;
    QTest::newRow("right last column") << QPoint(899, 500) << Edge::Right;
    QTest::newRow("left of right") << QPoint(896, 500) << Edge::None;
    QTest::newRow("beyond right") << QPoint(900, 500) << Edge::None;
    QTest::newRow("corner inner bounds") << QPoint(859, 759) << Edge::Corner;
    QTest::newRow("corner outer bounds") << QPoint(919, 819) << Edge::Corner;
    QTest::newRow("left of the corner") << QPoint(858, 795) << Edge::Bottom;
    QTest::newRow("above the corner") << QPoint(898, 758) << Edge::Right;
    QTest::newRow("beyond the corner") << QPoint(920, 795) << Edge::Bottom;
    QTest::newRow("under the corner") << QPoint(898, 820) << Edge::Right;
    QTest::newRow("top before left") << QPoint(100, 200) << Edge::Top;
    QTest::newRow("top before right") << QPoint(899, 203) << Edge::Top;
    QTest::newRow("bottom before left") << QPoint(101, 799) << Edge::Bottom;
}

void TestEdgeDrag::zones()
{
    QFETCH(QPoint, pointer);
    QTEST(zelvaro::edgeAt(windowRect, pointer), "edge");
}

void TestEdgeDrag::cursors()
{
    QCOMPARE(zelvaro::cursorOf(Edge::Corner), Qt::SizeFDiagCursor);
    QCOMPARE(zelvaro::cursorOf(Edge::Top), Qt::SizeVerCursor);
    QCOMPARE(zelvaro::cursorOf(Edge::Bottom), Qt::SizeVerCursor);
    QCOMPARE(zelvaro::cursorOf(Edge::Left), Qt::SizeHorCursor);
    QCOMPARE(zelvaro::cursorOf(Edge::Right), Qt::SizeHorCursor);
    QCOMPARE(zelvaro::cursorOf(Edge::None), Qt::ArrowCursor);
}

void TestEdgeDrag::draggingMovesTheEdgeToThePointer_data()
{
    QTest::addColumn<Edge>("edge");
    QTest::addColumn<QPoint>("pointer");
    QTest::addColumn<QRect>("result");
    QTest::newRow("left out") << Edge::Left << QPoint(50, 1) << QRect(50, 200, 850, 600);
    QTest::newRow("left in") << Edge::Left << QPoint(150, 1) << QRect(150, 200, 750, 600);
    QTest::newRow("right out") << Edge::Right << QPoint(949, 1) << QRect(100, 200, 850, 600);
    QTest::newRow("right in") << Edge::Right << QPoint(599, 1) << QRect(100, 200, 500, 600);
    QTest::newRow("top out") << Edge::Top << QPoint(1, 100) << QRect(100, 100, 800, 700);
    QTest::newRow("top in") << Edge::Top << QPoint(1, 300) << QRect(100, 300, 800, 500);
    QTest::newRow("bottom out") << Edge::Bottom << QPoint(1, 849) << QRect(100, 200, 800, 650);
    QTest::newRow("corner") << Edge::Corner << QPoint(949, 699) << QRect(100, 200, 850, 500);
    QTest::newRow("none") << Edge::None << QPoint(1, 1) << windowRect;
}

void TestEdgeDrag::draggingMovesTheEdgeToThePointer()
{
    QFETCH(Edge, edge);
    QFETCH(QPoint, pointer);
    QTEST(dragged(edge, pointer), "result");
}

void TestEdgeDrag::sizesStayBetweenSmallestAndLargest_data()
{
    QTest::addColumn<Edge>("edge");
    QTest::addColumn<QPoint>("pointer");
    QTest::addColumn<QRect>("result");
    QTest::newRow("left to the right edge")
        << Edge::Left << QPoint(899, 1) << QRect(500, 200, 400, 600);
    QTest::newRow("left beyond the right edge")
        << Edge::Left << QPoint(5000, 1) << QRect(500, 200, 400, 600);
    QTest::newRow("left far out") << Edge::Left << QPoint(-5000, 1) << QRect(-380, 200, 1280, 600);
    QTest::newRow("right to the left edge")
        << Edge::Right << QPoint(0, 1) << QRect(100, 200, 400, 600);
    QTest::newRow("right far out") << Edge::Right << QPoint(5000, 1) << QRect(100, 200, 1280, 600);
    QTest::newRow("top to the bottom edge")
        << Edge::Top << QPoint(1, 799) << QRect(100, 500, 800, 300);
    QTest::newRow("top far out") << Edge::Top << QPoint(1, -5000) << QRect(100, 40, 800, 760);
    QTest::newRow("bottom to the top edge")
        << Edge::Bottom << QPoint(1, 200) << QRect(100, 200, 800, 300);
    QTest::newRow("corner to the origin")
        << Edge::Corner << QPoint(0, 0) << QRect(100, 200, 400, 300);
    QTest::newRow("corner far out")
        << Edge::Corner << QPoint(9000, 9000) << QRect(100, 200, 1280, 760);
}

void TestEdgeDrag::sizesStayBetweenSmallestAndLargest()
{
    QFETCH(Edge, edge);
    QFETCH(QPoint, pointer);
    QTEST(dragged(edge, pointer), "result");
}

void TestEdgeDrag::leftAndTopStayBelowTheWidgetsMinimum()
{
    const zelvaro::DragLimits large{QSize(1280, 760), QSize(600, 500)};
    QCOMPARE(dragged(Edge::Left, QPoint(301, 1), large), windowRect);
    QCOMPARE(dragged(Edge::Left, QPoint(300, 1), large), QRect(300, 200, 600, 600));
    QCOMPARE(dragged(Edge::Top, QPoint(1, 301), large), windowRect);
    QCOMPARE(dragged(Edge::Top, QPoint(1, 300), large), QRect(100, 300, 800, 500));
}

void TestEdgeDrag::theEdgesThatAreNotDraggedComeFromNow()
{
    const QRect now(100, 200, 700, 600);
    QCOMPARE(zelvaro::draggedTo(Edge::Bottom, windowRect, now, QPoint(1, 699), sizeLimits),
             QRect(100, 200, 700, 500));
}

QTEST_APPLESS_MAIN(TestEdgeDrag)
#include "tst_edge_drag.moc"
