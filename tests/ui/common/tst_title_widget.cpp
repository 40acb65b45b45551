#include "ui/common/title_widget.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

/// A frameless window with a title strip, as every form has it.
class Window : public QWidget
{
public:
    explicit Window(bool movable) : QWidget(nullptr, Qt::FramelessWindowHint), strip(this)
    {
        setGeometry(200, 150, 300, 200);
        strip.setGeometry(5, 7, 290, 30);
        strip.attach(this, movable);
    }

    CTitleWidget strip;
};

namespace {

/// A move event as the window system sends it: with the pointer's global position, which a real
/// drag decides, and not computed from where the window is by now.
void moveTo(QWidget *strip, const QPoint &globalPos, Qt::MouseButtons buttons = Qt::LeftButton)
{
    QMouseEvent move(QEvent::MouseMove, strip->mapFromGlobal(globalPos), globalPos, Qt::NoButton,
                     buttons, Qt::NoModifier);
    QApplication::sendEvent(strip, &move);
}

} // namespace

class TestTitleWidget : public QObject
{
    Q_OBJECT

private slots:
    void draggingMovesTheWindowWithThePointer();
    void draggingStopsAtTheScreenOrigin();
    void draggingDoesNothingWhileNotMovable();
    void draggingNeedsTheLeftButton();
    void aStripWithoutWindowIgnoresTheMouse();
    void aStripOutlivesItsWindow();
    void pressAndReleaseAreAccepted();
    void everyMoveReportsTheNewGeometry();
    void releaseResetsOnlyTheHorizontalOffset();
    void aMoveWithoutPressStartsAnewWhenBothPartsAreZero();
    void aLabelOnTheStripDragsToo();
};

void TestTitleWidget::draggingMovesTheWindowWithThePointer()
{
    Window window(true);
    const QPoint start = window.strip.mapToGlobal(QPoint(20, 10));
    QTest::mousePress(&window.strip, Qt::LeftButton, {}, QPoint(20, 10));
    moveTo(&window.strip, start + QPoint(40, 25));
    QCOMPARE(window.pos(), QPoint(240, 175));
    moveTo(&window.strip, start + QPoint(-10, -5));
    QCOMPARE(window.pos(), QPoint(190, 145));
    QCOMPARE(window.size(), QSize(300, 200));
}

void TestTitleWidget::draggingStopsAtTheScreenOrigin()
{
    Window window(true);
    const QPoint start = window.strip.mapToGlobal(QPoint(20, 10));
    QTest::mousePress(&window.strip, Qt::LeftButton, {}, QPoint(20, 10));
    moveTo(&window.strip, start - QPoint(1000, 1000));
    QCOMPARE(window.pos(), QPoint(0, 0));
    moveTo(&window.strip, start - QPoint(199, 149));
    QCOMPARE(window.pos(), QPoint(1, 1));
    moveTo(&window.strip, start - QPoint(200, 100));
    QCOMPARE(window.pos(), QPoint(0, 50));
}

void TestTitleWidget::draggingDoesNothingWhileNotMovable()
{
    Window window(false);
    QSignalSpy moved(&window.strip, &CTitleWidget::signalSetMoveRect);
    const QPoint start = window.strip.mapToGlobal(QPoint(20, 10));
    QTest::mousePress(&window.strip, Qt::LeftButton, {}, QPoint(20, 10));
    moveTo(&window.strip, start + QPoint(40, 25));
    QCOMPARE(window.pos(), QPoint(200, 150));
    QCOMPARE(moved.count(), 0);

    window.strip.setMovable(true);
    QTest::mousePress(&window.strip, Qt::LeftButton, {}, QPoint(20, 10));
    moveTo(&window.strip, start + QPoint(40, 25));
    QCOMPARE(window.pos(), QPoint(240, 175));
}

void TestTitleWidget::draggingNeedsTheLeftButton()
{
    Window window(true);
    const QPoint start = window.strip.mapToGlobal(QPoint(20, 10));
    QTest::mousePress(&window.strip, Qt::RightButton, {}, QPoint(20, 10));
    moveTo(&window.strip, start + QPoint(40, 25), Qt::RightButton);
    moveTo(&window.strip, start + QPoint(40, 25), Qt::NoButton);
    QCOMPARE(window.pos(), QPoint(200, 150));
}

void TestTitleWidget::aStripWithoutWindowIgnoresTheMouse()
{
    CTitleWidget strip;
    strip.setMovable(true);
    QMouseEvent press(QEvent::MouseButtonPress, QPoint(3, 3), QPoint(3, 3), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&strip, &press);
    QVERIFY(!press.isAccepted());
    moveTo(&strip, QPoint(50, 50));
}

void TestTitleWidget::aStripOutlivesItsWindow()
{
    CTitleWidget strip;
    {
        QWidget window;
        strip.attach(&window, true);
    }
    QSignalSpy moved(&strip, &CTitleWidget::signalSetMoveRect);
    QTest::mousePress(&strip, Qt::LeftButton);
    moveTo(&strip, QPoint(50, 50));
    QTest::mouseRelease(&strip, Qt::LeftButton);
    QCOMPARE(moved.count(), 0);
}

void TestTitleWidget::pressAndReleaseAreAccepted()
{
    Window window(true);
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, QPoint(3, 3), QPoint(203, 153), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        event.ignore();
        QApplication::sendEvent(&window.strip, &event);
        QVERIFY(event.isAccepted());
    }
}

void TestTitleWidget::everyMoveReportsTheNewGeometry()
{
    Window window(true);
    QSignalSpy moved(&window.strip, &CTitleWidget::signalSetMoveRect);
    const QPoint start = window.strip.mapToGlobal(QPoint(20, 10));
    QTest::mousePress(&window.strip, Qt::LeftButton, {}, QPoint(20, 10));
    QCOMPARE(moved.count(), 0);
    moveTo(&window.strip, start + QPoint(3, 4));
    moveTo(&window.strip, start + QPoint(-500, 4));
    QCOMPARE(moved.count(), 2);
    QCOMPARE(moved.at(0).at(0).toRect(), QRect(203, 154, 300, 200));
    QCOMPARE(moved.at(1).at(0).toRect(), QRect(0, 154, 300, 200));
}

void TestTitleWidget::releaseResetsOnlyTheHorizontalOffset()
{
    Window window(true);
    const QPoint start = window.strip.mapToGlobal(QPoint(20, 10)); // (225, 167)
    QTest::mousePress(&window.strip, Qt::LeftButton, {}, QPoint(20, 10));
    QTest::mouseRelease(&window.strip, Qt::LeftButton, {}, QPoint(20, 10));

    // The offset is now (0, 167): a move without a press continues from the remembered position.
    moveTo(&window.strip, start + QPoint(0, 8));
    QCOMPARE(window.pos(), QPoint(200 + start.x(), 150 + 8));
}

void TestTitleWidget::aMoveWithoutPressStartsAnewWhenBothPartsAreZero()
{
    Window window(true);
    moveTo(&window.strip, QPoint(400, 300));
    QCOMPARE(window.pos(), QPoint(200, 150));
    moveTo(&window.strip, QPoint(410, 320));
    QCOMPARE(window.pos(), QPoint(210, 170));
}

void TestTitleWidget::aLabelOnTheStripDragsToo()
{
    Window window(true);
    QLabel label(QStringLiteral("Title"), &window.strip);
    label.setGeometry(0, 0, 100, 20);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const QPoint before = window.pos();
    const QPoint start = label.mapToGlobal(QPoint(10, 10));
    QTest::mousePress(&label, Qt::LeftButton, {}, QPoint(10, 10));
    moveTo(&window.strip, start + QPoint(30, 20));
    QCOMPARE(window.pos(), before + QPoint(30, 20));
    QTest::mouseRelease(&label, Qt::LeftButton);
}

QTEST_MAIN(TestTitleWidget)
#include "tst_title_widget.moc"
