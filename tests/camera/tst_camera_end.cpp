#include "tests/camera/session_test.h"

#include <QSignalSpy>

#include <atomic>
#include <thread>

/// How a session ends: stop, wait, delete; and what comes too late.
class TestCameraEnd : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void stopAsksTheLibraryAndCutsTheStateSignals();
    void stopGivesTheLibrarysResult();
    void lateProbeResultAfterStopIsDropped();
    void scheduledProbeAfterStopDoesNothing();
    void waitingEndsWhenTheLibraryRefusesProbes();
    void aReportThatWasOnItsWayDoesNotPlayAStoppedSession();
    void waitStoppedAsksUntilProbeAndStreamAreGone();
    void waitStoppedReturnsAtOnceWhenNothingIsLeft();
    void waitingWorksWhenTheApplicationQuits();
    void deleteSyncTakesThePlayerAway();
    void deletePlayerWaitsForTheLibrary();
    void deleteThatTheLibraryRefusesIsDoneAtOnce();
    void destructorDeletesThePlayer();
    void destructorWithoutAPlayerAsksNothing();
    void messageAfterTheEndIsDropped();
    void messagesWhileSessionsComeAndGo();
    void sessionMayGoInItsOwnStateSignal();

private:
    std::unique_ptr<CheckLog> m_checks;
};

void TestCameraEnd::init()
{
    fake_cammgr::reset();
    m_checks = std::make_unique<CheckLog>();
}

void TestCameraEnd::cleanup()
{
    QCOMPARE(m_checks->take(), QStringList());
    m_checks.reset();
    QVERIFY(fake_cammgr::contractViolations().empty());
    fake_cammgr::reset();
}

void TestCameraEnd::stopAsksTheLibraryAndCutsTheStateSignals()
{
    Session session;
    session.startConnected();
    QSignalSpy changed(session.camera.get(), &CCameraCore::signalStateChanged);
    QSignalSpy report(session.camera.get(), &CCameraCore::signalStateReport);
    int received = 0;
    connect(
        session.camera.get(), &CCameraCore::signalStateChanged, this, [&] { ++received; });
    connect(session.camera.get(), &CCameraCore::signalStateReport, this, [&] { ++received; });
    session.player()->forgetCalls();
    session->stop();
    QCOMPARE(names(session.player()->calls()),
             QStringList({"RtspPlayer_Stop_Connecting", "RtspPlayer_Stop"}));
    QVERIFY(session->is_stopped());
    emit session->signalStateChanged();
    emit session->signalStateReport();
    QCOMPARE(received, 0);
}

void TestCameraEnd::stopGivesTheLibrarysResult()
{
    Session session;
    session.start();
    session.player()->change([](fake_cammgr::Script &s) { s.results["RtspPlayer_Stop"] = -7; });
    QCOMPARE(session->stop(), -7);
    session.player()->change([](fake_cammgr::Script &s) { s.results.clear(); });
    session->wait_stopped();
}

void TestCameraEnd::lateProbeResultAfterStopIsDropped()
{
    Session session;
    session.start();
    session.player()->change([](fake_cammgr::Script &s) { s.stopEndsProbe = false; });
    session->stop();
    // Only now, so that stop cannot have cut them off.
    QSignalSpy changed(session.camera.get(), &CCameraCore::signalStateChanged);
    QSignalSpy report(session.camera.get(), &CCameraCore::signalStateReport);
    session.player()->probeOk();
    deliverAll();
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
    QCOMPARE(changed.count() + report.count(), 0);
    session->tick_alive();
    QCOMPARE(session.player()->count("RtspPlayer_TickAlive"), 1);
    session->delete_sync(); // the probe is no longer out
}

void TestCameraEnd::scheduledProbeAfterStopDoesNothing()
{
    Session session;
    session.startConnected();
    auto *const clock = session->findChild<QTimer *>();
    QVERIFY(clock && clock->isActive());
    session->stop();
    QVERIFY(!clock->isActive());
    clock->start(0);
    QTRY_VERIFY_WITH_TIMEOUT(!clock->isActive(), deadline);
    QCOMPARE(session.player()->count("RtspPlayer_TickAlive"), 1);
}

void TestCameraEnd::waitingEndsWhenTheLibraryRefusesProbes()
{
    fake_cammgr::Script script;
    script.results["RtspPlayer_TickAlive"] = -1;
    fake_cammgr::setDefaults(script);
    Session session;
    session.start();
    const QObject test;
    QTimer::singleShot(deadline, &test, [] { qFatal("the wait does not end"); });
    session->stop();
    session->wait_stopped();
    session->delete_sync();
    QVERIFY(!session->has_player());
}

void TestCameraEnd::aReportThatWasOnItsWayDoesNotPlayAStoppedSession()
{
    Session session;
    session.startConnected();
    int reports = 0;
    const auto view = [&] {
        ++reports;
        session->play();
    };
    connect(session.camera.get(), &CCameraCore::signalStateReport, this, view,
            Qt::QueuedConnection);
    session->tick_alive();
    session.player()->probeOk();
    QVERIFY(fake_cammgr::waitDelivered(deadline));
    QCoreApplication::sendPostedEvents(session.camera.get());
    session->stop();
    session->wait_stopped();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(reports, 1);
    QCOMPARE(session.player()->count("RtspPlayer_Play"), 0);
}

void TestCameraEnd::waitStoppedAsksUntilProbeAndStreamAreGone()
{
    Session session;
    session.startConnected();
    session->play();
    session->tick_alive();
    const auto player = session.player();
    player->change([](fake_cammgr::Script &s) {
        s.stopEndsProbe = false;
        s.stopStops = false;
    });
    session->stop();
    player->forgetCalls();
    QTimer::singleShot(
        0, [player] { player->change([](fake_cammgr::Script &s) { s.stopEndsProbe = true; }); });
    // The stream ends by itself, a while after the probe.
    QTimer::singleShot(350,
                       [player] { player->change([](fake_cammgr::Script &s) { s.playing = 0; }); });
    session->wait_stopped();
    QVERIFY(!player->probeOutstanding());
    QVERIFY(!session->is_playing());
    QVERIFY(player->count("RtspPlayer_Stop_Connecting") >= 2);
    QCOMPARE(player->count("RtspPlayer_Stop"), player->count("RtspPlayer_Stop_Connecting"));
    session->delete_sync();
}

void TestCameraEnd::waitStoppedReturnsAtOnceWhenNothingIsLeft()
{
    Session session;
    session.startConnected();
    session->stop();
    session.player()->forgetCalls();
    session->wait_stopped();
    QCOMPARE(names(session.player()->calls()), QStringList({"RtspPlayer_IsPlaying"}));
}

void TestCameraEnd::waitingWorksWhenTheApplicationQuits()
{
    Session session;
    session.start();
    QTimer::singleShot(0, [&] {
        QCoreApplication::exit(0);
        session->stop();
        session->wait_stopped();
    });
    QCoreApplication::exec();
    QVERIFY(!session.player()->probeOutstanding());
    session->delete_sync();
}

void TestCameraEnd::deleteSyncTakesThePlayerAway()
{
    Session session;
    session.startConnected();
    session.stopAndWait();
    session.player()->forgetCalls();
    session->delete_sync();
    QVERIFY(!session->has_player());
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
    QCOMPARE(names(session.player()->calls()),
             QStringList({"RtspPlayer_IsPlaying", "RtspPlayer_DeleteSync"}));
    const auto player = session.player();
    // Nobody listens any more.
    emit session->signalCameraEvent(CAMMGR_MSG_PROBE_OK, 0, {});
    QCoreApplication::sendPostedEvents();
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
    session.end();
    QCOMPARE(player->count("RtspPlayer_Delete"), 0);
}

void TestCameraEnd::deletePlayerWaitsForTheLibrary()
{
    Session session;
    session.startConnected();
    session.stopAndWait();
    const auto player = session.player();
    player->change([](fake_cammgr::Script &s) { s.deleteAnswers = false; });
    bool answered = false;
    QTimer::singleShot(250, [&] {
        answered = true;
        player->send(CAMMGR_MSG_DELETED, 0);
    });
    session->delete_player();
    QVERIFY(answered);
    QVERIFY(player->deleted());
    QVERIFY(!session->has_player());
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
}

void TestCameraEnd::deleteThatTheLibraryRefusesIsDoneAtOnce()
{
    Session session;
    session.startConnected();
    session.stopAndWait();
    const auto player = session.player();
    player->change([](fake_cammgr::Script &s) { s.results["RtspPlayer_Delete"] = -1; });
    session.camera.reset();
    QCOMPARE(player->count("RtspPlayer_DeleteSync"), 1);
    QVERIFY(player->deleted());
}

void TestCameraEnd::destructorDeletesThePlayer()
{
    Session session;
    session.startConnected();
    const auto player = session.player();
    session.stopAndWait();
    session.camera.reset();
    QCOMPARE(player->count("RtspPlayer_Delete"), 1);
    QVERIFY(player->deleted());
}

void TestCameraEnd::destructorWithoutAPlayerAsksNothing()
{
    {
        Session session;
    }
    QVERIFY(fake_cammgr::calls().empty());
}

void TestCameraEnd::messageAfterTheEndIsDropped()
{
    std::shared_ptr<fake_cammgr::Player> player;
    {
        Session session;
        session.startConnected();
        player = session.player();
    }
    for (int message = 0; message <= 4; ++message)
        player->send(message, 1, std::vector<std::string>{"x"});
    deliverAll();
    QCOMPARE(m_checks->take(), QStringList());
    QVERIFY(fake_cammgr::contractViolations().empty());
}

void TestCameraEnd::messagesWhileSessionsComeAndGo()
{
    std::atomic<bool> run = true;
    std::thread storm([&] {
        while (run) {
            for (const auto &player : fake_cammgr::players())
                player->send(CAMMGR_MSG_COMMAND_REPLIES, 1,
                             std::vector<std::string>{"000 Success"});
            fake_cammgr::waitDelivered(deadline);
        }
    });
    for (int i = 0; i < 40; ++i) {
        CameraRecord record;
        record.hostname = QString::number(i);
        CCamera camera;
        camera.set_info(&record);
        QCOMPARE(camera.create(), 0);
        QSignalSpy finished(&camera, &CCameraCore::signalP2PConfFinished);
        QVERIFY(finished.wait(deadline));
        camera.stop();
        while (camera.is_playing() || fake_cammgr::lastPlayer()->probeOutstanding())
            QCoreApplication::processEvents();
        camera.wait_stopped();
        camera.delete_sync();
    }
    run = false;
    storm.join();
    deliverAll();
    // Those that were posted before the player was deleted find none.
    for (const QString &report : m_checks->take())
        QCOMPARE(report, CheckLog::camera({"m_pRtspPlayer"}).first());
}

void TestCameraEnd::sessionMayGoInItsOwnStateSignal()
{
    for (const bool atChange : {true, false}) {
        CameraRecord record;
        record.hostname = "x";
        auto *const camera = new CCamera;
        camera->set_info(&record);
        QCOMPARE(camera->create(), 0);
        const QPointer<CCamera> guard(camera);
        const auto go = [camera] {
            camera->stop();
            camera->wait_stopped();
            delete camera;
        };
        if (atChange)
            connect(camera, &CCameraCore::signalStateChanged, this, go);
        else
            connect(camera, &CCameraCore::signalStateReport, this, go);
        fake_cammgr::lastPlayer()->probeOk();
        QTRY_VERIFY_WITH_TIMEOUT(guard.isNull(), deadline);
    }
}

QTEST_MAIN(TestCameraEnd)
#include "tst_camera_end.moc"
