#include "ui/common/busy_dialog.h"

#include <QPushButton>
#include <QtTest>

namespace {

constexpr int deadline = 30000; // ms

class Job : public QObject
{
    Q_OBJECT

signals:
    void finished();
};

} // namespace

/// Waiting for a signal behind a modal dialog that nothing else closes.
class TestBusyDialog : public QObject
{
    Q_OBJECT

private slots:
    void showsABusyIndicatorWithoutAButton();
    void onlyTheSignalEndsTheWait();
    void signalThatIsQueuedAtOnceEndsTheWait();
    void jobThatDoesNotStartIsNotWaitedFor();
    void jobThatIsDestroyedEndsTheWait();
    void parentThatIsDestroyedEndsTheWait();
    void staysAwayAfterTheWait();
};

void TestBusyDialog::showsABusyIndicatorWithoutAButton()
{
    const zelvaro::BusyDialog dialog("Please wait...", nullptr);
    QCOMPARE(dialog.labelText(), QString("Please wait..."));
    QCOMPARE(dialog.minimum(), 0);
    QCOMPARE(dialog.maximum(), 0);
    QVERIFY(dialog.isModal());
    QVERIFY(dialog.windowFlags() & Qt::FramelessWindowHint);
    QVERIFY(!dialog.findChild<QPushButton *>());
}

void TestBusyDialog::onlyTheSignalEndsTheWait()
{
    Job job;
    bool survived = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &job, [&] {
        QWidget *const dialog = QApplication::activeModalWidget();
        if (!dialog || !dialog->isVisible())
            return;
        timer.stop();
        QTest::keyClick(dialog, Qt::Key_Escape);
        dialog->close();
        survived = dialog->isVisible();
        emit job.finished();
    });
    timer.start(5);
    QVERIFY(zelvaro::runBusy(nullptr, "wait", &job, &Job::finished, [] { return true; }));
    QVERIFY(survived);
    QVERIFY(!QApplication::activeModalWidget());
}

void TestBusyDialog::signalThatIsQueuedAtOnceEndsTheWait()
{
    Job job;
    QVERIFY(zelvaro::runBusy(nullptr, "wait", &job, &Job::finished, [&] {
        return QMetaObject::invokeMethod(&job, &Job::finished, Qt::QueuedConnection);
    }));
}

void TestBusyDialog::jobThatDoesNotStartIsNotWaitedFor()
{
    Job job;
    QVERIFY(!zelvaro::runBusy(nullptr, "wait", &job, &Job::finished, [] { return false; }));
}

void TestBusyDialog::jobThatIsDestroyedEndsTheWait()
{
    auto *const job = new Job;
    QVERIFY(zelvaro::runBusy(nullptr, "wait", job, &Job::finished, [&] {
        QTimer::singleShot(0, job, [job] { delete job; });
        return true;
    }));
}

void TestBusyDialog::parentThatIsDestroyedEndsTheWait()
{
    Job job;
    auto *const parent = new QWidget;
    QVERIFY(zelvaro::runBusy(parent, "wait", &job, &Job::finished, [&] {
        QTimer::singleShot(0, parent, [parent] { delete parent; });
        return true;
    }));
}

void TestBusyDialog::staysAwayAfterTheWait()
{
    Job job;
    for (int i = 0; i < 3; ++i) {
        QTimer::singleShot(0, &job, &Job::finished);
        zelvaro::runBusy(nullptr, "wait", &job, &Job::finished, [] { return true; });
    }
    QTRY_VERIFY_WITH_TIMEOUT(!QApplication::activeModalWidget(), deadline);
    for (const QWidget *window : QApplication::topLevelWidgets())
        QVERIFY(!window->isVisible());
}

QTEST_MAIN(TestBusyDialog)
#include "tst_busy_dialog.moc"
