#include "camera/camera_list.h"

#include "camera/camera.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>

namespace {

constexpr int deadline = 30000; // ms

/// Names of the calls of all players, without the questions, each with its host name.
QStringList actions(const QStringList &wanted)
{
    QStringList names;
    for (const fake_cammgr::Call &call : fake_cammgr::calls()) {
        const QString name = QString::fromStdString(call.name);
        if (!wanted.contains(name))
            continue;
        for (const auto &player : fake_cammgr::players())
            if (player->handle() == call.player)
                names << name + " " + QString::fromStdString(player->hostname());
    }
    return names;
}

} // namespace

/// The sessions of all registered cameras.
class TestCameraList : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void startsASessionForEachRecordInOrder();
    void sessionThatCannotStartIsRemovedAndItsRecordStays();
    void startingAgainReplacesTheSessions();
    void removeDestroysTheSession();
    void removePassesOverAStranger();
    void closingStopsAllBeforeItWaitsForAny();
    void destroyAllTearsDownFromTheFront();
    void destroyAllAlsoStopsWhatWasNotClosed();
    void closingWhileProbesAreOut();
    void hundredDeadCamerasCloseQuickly();
    void closingEndsWhenTheLibraryRefusesProbes();
    void sessionWithoutAPlayerDoesNotDisturbTheEnd();

private:
    void addRecords(const QStringList &hostnames);

    std::unique_ptr<SettingsHome> m_home;
    std::unique_ptr<CameraSettings> m_settings;
    std::unique_ptr<CCameraList> m_list;
};

void TestCameraList::init()
{
    fake_cammgr::reset();
    m_home = std::make_unique<SettingsHome>();
    m_settings = std::make_unique<CameraSettings>();
    m_settings->load();
    m_list = std::make_unique<CCameraList>();
}

void TestCameraList::cleanup()
{
    m_list->closing();
    m_list->destroyAll();
    QCOMPARE(fake_cammgr::contractViolations().size(), size_t(0));
    m_list.reset();
    m_settings.reset();
    fake_cammgr::reset();
}

void TestCameraList::addRecords(const QStringList &hostnames)
{
    for (const QString &hostname : hostnames)
        m_settings->addRecord(CAMERA_TYPE_P2P, hostname, "admin", "secret", "name", false);
}

void TestCameraList::startsASessionForEachRecordInOrder()
{
    addRecords({"a", "b", "c"});
    m_list->startSessions(*m_settings);
    QCOMPARE(m_list->count(), 3);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_list->at(i)->get_info(), m_settings->at(i));
        QCOMPARE(m_list->at(i)->hostname(), m_settings->at(i)->hostname);
    }
    QCOMPARE(m_list->at(3), nullptr);
    QCOMPARE(m_list->at(-1), nullptr);
    QCOMPARE(actions({"RtspPlayer_TickAlive"}),
             QStringList(
                 {"RtspPlayer_TickAlive a", "RtspPlayer_TickAlive b", "RtspPlayer_TickAlive c"}));
}

void TestCameraList::sessionThatCannotStartIsRemovedAndItsRecordStays()
{
    addRecords({"a", "b"});
    fake_cammgr::failCreate();
    m_list->startSessions(*m_settings);
    QCOMPARE(m_list->count(), 1);
    QCOMPARE(m_list->at(0)->hostname(), QString("b"));
    QCOMPARE(m_settings->count(), 2);
    m_settings->save();
    QVERIFY(m_home->read().contains("HOSTNAME=a\n"));
}

void TestCameraList::startingAgainReplacesTheSessions()
{
    addRecords({"a"});
    m_list->startSessions(*m_settings);
    addRecords({"b"});
    m_list->startSessions(*m_settings);
    QCOMPARE(m_list->count(), 2);
    QCOMPARE(fake_cammgr::players().size(), size_t(3));
    QVERIFY(fake_cammgr::players().front()->deleted());
}

void TestCameraList::removeDestroysTheSession()
{
    addRecords({"a", "b"});
    m_list->startSessions(*m_settings);
    CCamera *const first = m_list->at(0);
    QSignalSpy destroyed(first, &QObject::destroyed);
    first->stop();
    first->wait_stopped();
    m_list->remove(first);
    QCOMPARE(destroyed.count(), 1);
    QCOMPARE(m_list->count(), 1);
    QCOMPARE(m_list->at(0)->hostname(), QString("b"));
    QVERIFY(fake_cammgr::player("a")->deleted());
    QCOMPARE(fake_cammgr::player("a")->count("RtspPlayer_Delete"), 1);
}

void TestCameraList::removePassesOverAStranger()
{
    CCamera stranger;
    m_list->remove(&stranger);
    m_list->remove(nullptr);
    QCOMPARE(m_list->count(), 0);
}

void TestCameraList::closingStopsAllBeforeItWaitsForAny()
{
    addRecords({"a", "b"});
    m_list->startSessions(*m_settings);
    m_list->closing();
    const QStringList stops = actions({"RtspPlayer_Stop_Connecting", "RtspPlayer_Stop"});
    QCOMPARE(stops.mid(0, 4), QStringList({"RtspPlayer_Stop_Connecting a", "RtspPlayer_Stop a",
                                           "RtspPlayer_Stop_Connecting b", "RtspPlayer_Stop b"}));
    QVERIFY(m_list->at(0)->is_stopped());
    QVERIFY(m_list->at(1)->is_stopped());
    QCOMPARE(m_list->count(), 2);
}

void TestCameraList::destroyAllTearsDownFromTheFront()
{
    addRecords({"a", "b", "c"});
    m_list->startSessions(*m_settings);
    m_list->closing();
    m_list->destroyAll();
    QCOMPARE(m_list->count(), 0);
    QCOMPARE(actions({"RtspPlayer_DeleteSync", "RtspPlayer_Delete"}),
             QStringList({"RtspPlayer_DeleteSync a", "RtspPlayer_DeleteSync b",
                          "RtspPlayer_DeleteSync c"}));
}

void TestCameraList::destroyAllAlsoStopsWhatWasNotClosed()
{
    addRecords({"a"});
    m_list->startSessions(*m_settings);
    m_list->destroyAll();
    QVERIFY(fake_cammgr::player("a")->deleted());
}

void TestCameraList::closingWhileProbesAreOut()
{
    // The library answers the probe only at the second request to end it.
    fake_cammgr::Script script;
    script.stopEndsProbe = false;
    fake_cammgr::setDefaults(script);
    addRecords({"a"});
    m_list->startSessions(*m_settings);
    const auto player = fake_cammgr::player("a");
    QTimer::singleShot(
        0, [player] { player->change([](fake_cammgr::Script &s) { s.stopEndsProbe = true; }); });
    m_list->closing();
    QVERIFY(!player->probeOutstanding());
    QVERIFY(player->count("RtspPlayer_Stop_Connecting") >= 2);
}

void TestCameraList::hundredDeadCamerasCloseQuickly()
{
    QStringList hostnames;
    for (int i = 0; i < 100; ++i)
        hostnames << QString::number(i);
    addRecords(hostnames);
    m_list->startSessions(*m_settings);
    QCOMPARE(m_list->count(), 100);
    QElapsedTimer timer;
    timer.start();
    m_list->closing();
    m_list->destroyAll();
    // One after the other each would wait for 100 ms at least once. Together they wait once, or
    // twice where the library's thread is slow.
    const int waits = actions({"RtspPlayer_Stop_Connecting"}).size() - 100;
    QVERIFY2(waits <= 5, qPrintable(QString::number(waits)));
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
}

void TestCameraList::closingEndsWhenTheLibraryRefusesProbes()
{
    fake_cammgr::Script script;
    script.results["RtspPlayer_TickAlive"] = -1;
    fake_cammgr::setDefaults(script);
    addRecords({"a", "b"});
    m_list->startSessions(*m_settings);
    const QObject test;
    QTimer::singleShot(deadline, &test, [] { qFatal("the program does not end"); });
    m_list->closing();
    m_list->destroyAll();
    QCOMPARE(m_list->count(), 0);
}

void TestCameraList::sessionWithoutAPlayerDoesNotDisturbTheEnd()
{
    CCamera *const camera = m_list->create();
    QCOMPARE(m_list->at(0), camera);
    m_list->closing();
    m_list->destroyAll();
    QCOMPARE(m_list->count(), 0);
    QCOMPARE(fake_cammgr::calls().size(), size_t(0));
}

QTEST_MAIN(TestCameraList)
#include "tst_camera_list.moc"
