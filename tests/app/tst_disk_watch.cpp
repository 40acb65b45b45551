#include "app/disk_watch.h"

#include "app/status_row.h"
#include "resources/resources.h"
#include "tests/ui/live/live_fixture.h"

#include <QLabel>
#include <QSemaphore>
#include <QStorageInfo>
#include <QThread>

using namespace zelvaro;

namespace {
constexpr int deadline = LiveFixture::deadline;
constexpr qint64 megabyte = 1'000'000;
} // namespace

/// The strip that tells how little room the album has left.
class TestDiskWatch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { initResources(); }
    void init();
    void cleanup();

    void withRoomThereIsNothingToSay();
    void littleRoomIsTold();
    void runningRecordingsTellHowLongTheyFit();
    void anUnknownRoomIsNotTold();
    void theDiskIsAskedOffTheGuiThread();
    void aDiskThatHangsIsAskedOnce();
    void aDiskThatAnswersTooLateIsNotHeard();
    void theFolderNeedNotBeThere();
    void whatThePageSaysComesFirst();

private:
    void answer(qint64 bytes);

    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<QLabel> m_label;
    StatusRow *m_row = nullptr;
};

void TestDiskWatch::init()
{
    m_live = std::make_unique<LiveFixture>();
    m_label = std::make_unique<QLabel>();
    m_row = new StatusRow(m_label.get());
    answer(5000 * megabyte);
}

void TestDiskWatch::cleanup()
{
    m_label.reset();
    QThreadPool::globalInstance()->waitForDone();
    m_live.reset();
}

/// The next look finds that room.
void TestDiskWatch::answer(qint64 bytes)
{
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::sendPostedEvents();
    auto asked = std::make_shared<QSemaphore>();
    m_row->disk().setAsk([bytes, asked](const QString &) {
        asked->release();
        return bytes;
    });
    m_row->disk().look();
    QVERIFY(asked->tryAcquire(1, deadline));
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::sendPostedEvents();
}

void TestDiskWatch::withRoomThereIsNothingToSay()
{
    QCOMPARE(m_label->text(), QString());
    answer(1000 * megabyte);
    QCOMPARE(m_label->text(), QString());
}

void TestDiskWatch::littleRoomIsTold()
{
    answer(612 * megabyte);
    QCOMPARE(m_label->text(), QStringLiteral("The disk of the album has 612 MB left."));
    QVERIFY(m_label->property("diskNotice").toBool());
    answer(2000 * megabyte);
    QCOMPARE(m_label->text(), QString());
    QVERIFY(!m_label->property("diskNotice").toBool());
}

void TestDiskWatch::runningRecordingsTellHowLongTheyFit()
{
    m_live->addCameras({QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")});
    for (int i : {0, 2}) {
        m_live->change(
            [](auto &script) {
                script.writing = CAMMGR_WRITING;
                script.bitRate = 4'000'000;
            },
            i);
    }
    answer(900 * megabyte);
    QCOMPARE(m_label->text(), QStringLiteral("The disk of the album has 900 MB left. The running "
                                             "recordings fit for 15 min."));
}

void TestDiskWatch::anUnknownRoomIsNotTold()
{
    answer(-1);
    QCOMPARE(m_label->text(), QString());
}

void TestDiskWatch::theDiskIsAskedOffTheGuiThread()
{
    QAtomicPointer<QThread> thread;
    m_row->disk().setAsk([&thread](const QString &) {
        thread = QThread::currentThread();
        return megabyte;
    });
    m_row->disk().look();
    QThreadPool::globalInstance()->waitForDone();
    QVERIFY(thread != nullptr);
    QVERIFY(thread != QThread::currentThread());
}

void TestDiskWatch::aDiskThatHangsIsAskedOnce()
{
    QSemaphore begun;
    QSemaphore end;
    m_row->disk().setAsk([&](const QString &) {
        begun.release();
        end.acquire();
        return megabyte;
    });
    m_row->disk().look();
    QVERIFY(begun.tryAcquire(1, deadline));
    m_row->disk().look();
    m_row->disk().look();
    end.release();
    QThreadPool::globalInstance()->waitForDone();
    QCOMPARE(begun.available(), 0);
    QTRY_VERIFY_WITH_TIMEOUT(!m_label->text().isEmpty(), deadline);
}

void TestDiskWatch::aDiskThatAnswersTooLateIsNotHeard()
{
    QSemaphore begun;
    QSemaphore end;
    m_row->disk().setAsk([&](const QString &) {
        begun.release();
        end.acquire();
        return megabyte;
    });
    m_row->disk().look();
    QVERIFY(begun.tryAcquire(1, deadline));
    m_label.reset();
    end.release();
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::sendPostedEvents();
}

void TestDiskWatch::theFolderNeedNotBeThere()
{
    const QString home = QDir::tempPath();
    const qint64 bytes = freeBytes(home + QStringLiteral("/none/of/these"));
    QVERIFY(bytes >= 0);
    QVERIFY(bytes <= QStorageInfo(home).bytesTotal());
    QVERIFY(freeBytes(QStringLiteral("/none")) >= 0);
}

void TestDiskWatch::whatThePageSaysComesFirst()
{
    answer(612 * megabyte);
    m_row->showPageText(QStringLiteral("trouble"));
    QCOMPARE(m_label->text(), QStringLiteral("trouble"));
    QVERIFY(!m_label->property("diskNotice").toBool());
    m_row->showPageText({});
    QVERIFY(m_label->property("diskNotice").toBool());
}

QTEST_MAIN(TestDiskWatch)
#include "tst_disk_watch.moc"
