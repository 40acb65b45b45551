#include "camera/wait_events.h"

#include "tests/camera/x_key.h"

#include <QElapsedTimer>
#include <QPushButton>
#include <QtTest>

/// Waiting in a local event loop, with a real keyboard's events.
class TestWaitEvents : public QObject
{
    Q_OBJECT

private slots:
    void lastsAsLongAsAsked();
    void runsTimersAndQueuedCalls();
    void keepsUserInputForLater();
};

void TestWaitEvents::lastsAsLongAsAsked()
{
    QElapsedTimer timer;
    timer.start();
    zelvaro::waitEvents(200);
    // A coarse timer may be 5 % early.
    QVERIFY2(timer.elapsed() >= 185, qPrintable(QString::number(timer.elapsed())));
}

void TestWaitEvents::runsTimersAndQueuedCalls()
{
    bool called = false;
    bool fired = false;
    QMetaObject::invokeMethod(
        this, [&] { called = true; }, Qt::QueuedConnection);
    QTimer::singleShot(1, this, [&] { fired = true; });
    zelvaro::waitEvents(500);
    QVERIFY(called);
    QVERIFY(fired);
}

void TestWaitEvents::keepsUserInputForLater()
{
    QPushButton button(QStringLiteral("press me"));
    int clicks = 0;
    connect(&button, &QPushButton::clicked, &button, [&] { ++clicks; });
    button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&button, 30000));
    button.setFocus();
    // The keys work at all, and come within this time.
    QVERIFY(pressSpaceInWindow(button.winId()));
    QTRY_COMPARE_WITH_TIMEOUT(clicks, 1, 30000);
    QVERIFY(pressSpaceInWindow(button.winId()));
    zelvaro::waitEvents(500);
    QCOMPARE(clicks, 1);
    // Qt hands held-back input on together with the display's next event.
    QVERIFY(pressSpaceInWindow(button.winId()));
    QTRY_COMPARE_WITH_TIMEOUT(clicks, 3, 30000);
}

QTEST_MAIN(TestWaitEvents)
#include "tst_wait_events.moc"
