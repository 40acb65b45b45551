#include "tests/camera/session_test.h"

/// Each check for developers, broken once. A broken check never ends the program.
class TestCameraChecks : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void operationsWithoutAPlayer_data();
    void operationsWithoutAPlayer();
    void createTwice();
    void createAfterStop();
    void createInAStateThatIsNotNew();
    void stopTwice();
    void stopWhileThePlayerIsDeleted();
    void deleteWithAProbeOut();
    void deleteWithoutStop();
    void deleteWhilePlaying();
    void deleteWithoutAPlayer();
    void probeResultThatNobodyAskedFor();
    void deletedThatNobodyAskedFor();
    void stringsWithoutACount();
    void countWithoutStrings();
    void eventWithoutAPlayer();
    void unknownMessage();
    void restartOfAStoppedSession();
    void noCommands();

private:
    QStringList reports() { return m_checks->take(); }

    std::unique_ptr<CheckLog> m_checks;
};

void TestCameraChecks::init()
{
    fake_cammgr::reset();
    m_checks = std::make_unique<CheckLog>();
}

void TestCameraChecks::cleanup()
{
    QCOMPARE(m_checks->take(), QStringList());
    m_checks.reset();
    fake_cammgr::reset();
}

void TestCameraChecks::operationsWithoutAPlayer_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("call");
    const char *const calls[] = {"RtspPlayer_SetupP2PliveStream",
                                 "RtspPlayer_Stop",
                                 "RtspPlayer_IsPlaying",
                                 "AudioUpload_Play",
                                 "AudioUpload_Stop",
                                 "AudioUpload_IsPlaying",
                                 "RtspPlayer_HasVideoStream",
                                 "RtspPlayer_HasAudioStream",
                                 "RtspPlayer_SetVolume",
                                 "RtspPlayer_Snapshot",
                                 "RtspPlayer_BeginWriting",
                                 "RtspPlayer_EndWriting",
                                 "RtspPlayer_IsWriting",
                                 "RtspPlayer_GetVideoFrameRate",
                                 "RtspPlayer_GetBitRate",
                                 "RtspPlayer_GetVideoWidth",
                                 "RtspPlayer_GetVideoHeight",
                                 "RtspPlayer_Issue_P2PConf_URLCMDs"};
    int index = 0;
    for (const char *call : calls)
        QTest::newRow(call) << index++ << call;
}

/// The check is reported, then the library is called anyway.
void TestCameraChecks::operationsWithoutAPlayer()
{
    QFETCH(int, index);
    QFETCH(QString, call);
    Session session;
    CCamera &camera = *session.camera;
    QWidget surface;
    const std::function<void()> operations[] = {[&] { camera.setup_live_stream(1, &surface); },
                                                [&] { camera.stop_play(); },
                                                [&] { camera.is_playing(); },
                                                [&] { camera.audio_upload_play(); },
                                                [&] { camera.audio_upload_stop(); },
                                                [&] { camera.audio_upload_is_playing(); },
                                                [&] { camera.has_video(); },
                                                [&] { camera.has_audio(); },
                                                [&] { camera.set_volume(1); },
                                                [&] { camera.snapshot("x"); },
                                                [&] { camera.begin_writing("x", 1); },
                                                [&] { camera.end_writing(); },
                                                [&] { camera.is_writing(); },
                                                [&] { camera.get_frame_rate(); },
                                                [&] { camera.get_bit_rate(); },
                                                [&] { QCOMPARE(camera.get_video_width(), 640); },
                                                [&] { QCOMPARE(camera.get_video_height(), 480); },
                                                [&] { camera.issue_conf_commands({"x"}); }};
    operations[index]();
    QCOMPARE(reports(), CheckLog::camera({"m_pRtspPlayer"}));
    QCOMPARE(names(fake_cammgr::calls()), QStringList(call));
    QCOMPARE(fake_cammgr::calls().front().player, nullptr);
}

void TestCameraChecks::createTwice()
{
    Session session;
    session.start();
    QCOMPARE(session->create(), -1);
    QCOMPARE(reports(), CheckLog::camera({"!m_pRtspPlayer", "!cam_started"}));
    QCOMPARE(fake_cammgr::players().size(), size_t(1));
}

void TestCameraChecks::createAfterStop()
{
    Session session;
    session.start();
    session.stopAndWait();
    session->delete_sync();
    QCOMPARE(session->create(), 0);
    QCOMPARE(reports(), CheckLog::camera({"!cam_to_stop"}));
    QCOMPARE(session.player()->count("RtspPlayer_TickAlive"), 0);
}

void TestCameraChecks::createInAStateThatIsNotNew()
{
    Session session;
    session->slotCameraEvent(CAMMGR_MSG_PROBE_OK, 0, {});
    QCOMPARE(reports(), CheckLog::camera({"m_pRtspPlayer", "cam_started"}));
    QCOMPARE(session->create(), 0);
    QCOMPARE(reports(), CheckLog::camera({"cam_status == CAMERA_STATE_DISCONNECTED",
                                          "cam_status == old_cam_status"}));
}

void TestCameraChecks::stopTwice()
{
    Session session;
    session.start();
    session->stop();
    session->stop();
    QCOMPARE(reports(), CheckLog::camera({"!cam_to_stop"}));
    session->wait_stopped();
}

void TestCameraChecks::stopWhileThePlayerIsDeleted()
{
    Session session;
    session.start();
    session.stopAndWait();
    const auto player = session.player();
    player->change([](fake_cammgr::Script &s) { s.deleteAnswers = false; });
    QTimer::singleShot(0, [&] {
        session->stop();
        player->send(CAMMGR_MSG_DELETED, 0);
    });
    session->delete_player();
    QCOMPARE(reports(), CheckLog::camera({"!cam_to_delete", "!cam_to_stop"}));
}

void TestCameraChecks::deleteWithAProbeOut()
{
    Session session;
    session.start();
    session.player()->change([](fake_cammgr::Script &s) { s.stopEndsProbe = false; });
    session->stop();
    session->delete_sync();
    QCOMPARE(reports(), CheckLog::camera({"!cam_started"}));
}

void TestCameraChecks::deleteWithoutStop()
{
    Session session;
    session.startConnected();
    session->delete_sync();
    QCOMPARE(reports(), CheckLog::camera({"cam_to_stop"}));
    QVERIFY(!session->has_player());
}

void TestCameraChecks::deleteWhilePlaying()
{
    Session session;
    session.startConnected();
    session->play();
    session.player()->change([](fake_cammgr::Script &s) { s.stopStops = false; });
    session->stop();
    session->delete_sync();
    QCOMPARE(reports(), CheckLog::camera({"!is_playing()"}));
}

void TestCameraChecks::deleteWithoutAPlayer()
{
    const QStringList broken = CheckLog::camera({"m_pRtspPlayer", "cam_to_stop", "m_pRtspPlayer"});
    Session session;
    session->delete_player();
    QCOMPARE(reports(), broken);
    session->delete_sync();
    QCOMPARE(reports(), broken);
}

void TestCameraChecks::probeResultThatNobodyAskedFor()
{
    Session session;
    session.startConnected();
    session.player()->probeFailed();
    deliverAll();
    QCOMPARE(reports(), CheckLog::camera({"cam_started"}));
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
}

void TestCameraChecks::deletedThatNobodyAskedFor()
{
    Session session;
    session.start();
    session.player()->send(CAMMGR_MSG_DELETED, 0);
    deliverAll();
    QCOMPARE(reports(), CheckLog::camera({"cam_to_delete", "cam_to_stop", "cam_started == 0"}));
    QVERIFY(!session->has_player());
}

void TestCameraChecks::stringsWithoutACount()
{
    Session session;
    session.start();
    QSignalSpy finished(session.camera.get(), &CCameraCore::signalP2PConfFinished);
    session.player()->send(CAMMGR_MSG_COMMAND_REPLIES, 0, std::vector<std::string>{"000 Success"});
    session.player()->send(CAMMGR_MSG_COMMAND_REPLIES, -3, std::vector<std::string>{});
    deliverAll();
    QCOMPARE(reports(),
             CheckLog::camera({"nErrORcnt > 0", "nErrORcnt > 0", "nErrORcnt == result.length()"}));
    QCOMPARE(finished.count(), 2);
    QVERIFY(session->command_codes().isEmpty());
}

void TestCameraChecks::countWithoutStrings()
{
    Session session;
    session.start();
    session.player()->send(CAMMGR_MSG_COMMAND_REPLIES, 2);
    deliverAll();
    QCOMPARE(reports(), CheckLog::camera({"nErrORcnt == result.length()"}));
    QVERIFY(session->command_codes().isEmpty());
}

void TestCameraChecks::eventWithoutAPlayer()
{
    Session session;
    session->slotCameraEvent(CAMMGR_MSG_COMMAND_REPLIES, 1, {"000 Success"});
    QCOMPARE(reports(), CheckLog::camera({"m_pRtspPlayer"}));
    QCOMPARE(session->command_codes(), QList<int>({0}));
}

void TestCameraChecks::unknownMessage()
{
    Session session;
    session.startConnected();
    for (const int message : {4, -1, 1000000})
        session.player()->send(message, 1, std::vector<std::string>{"x"});
    deliverAll();
    QCOMPARE(reports(), CheckLog::camera({"false", "false", "false"}));
    QCOMPARE(session->get_state(), int(CAMERA_STATE_CONNECTED));
}

void TestCameraChecks::restartOfAStoppedSession()
{
    Session session;
    session->restart();
    QCOMPARE(reports(), CheckLog::camera({"false"}));
    QVERIFY(fake_cammgr::calls().empty());
}

void TestCameraChecks::noCommands()
{
    Session session;
    session.start();
    session->issue_conf_commands({});
    QCOMPARE(reports(), CheckLog::camera({"cnt > 0"}));
}

QTEST_MAIN(TestCameraChecks)
#include "tst_camera_checks.moc"
