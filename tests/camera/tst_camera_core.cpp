#include "tests/camera/session_test.h"

#include <QElapsedTimer>
#include <QSignalSpy>

namespace {

/// Order in which the two state signals come.
struct StateLog
{
    explicit StateLog(CCameraCore *session)
    {
        QObject::connect(
            session, &CCameraCore::signalStateChanged, session,
            [this] { log << QStringLiteral("changed"); });
        QObject::connect(session, &CCameraCore::signalStateReport, session,
                         [this] { log << QStringLiteral("report"); });
    }
    QStringList take() { return std::exchange(log, {}); }

    QStringList log;
};

} // namespace

/// The session over a library that answers on demand.
class TestCameraCore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void startsDisconnected();
    void setInfoCopiesTheRecord();
    void createMakesAPlayerAndSendsAProbe();
    void createWithoutAPlayerFails();
    void textsGoInTheEncodingOfTheLibrary_data();
    void textsGoInTheEncodingOfTheLibrary();
    void probeResultsMoveTheState_data();
    void probeResultsMoveTheState();
    void sameResultTwiceOnlyReports();
    void changedComesBeforeReport();
    void codeAloneIsAChange();
    void stateIsHandledOnTheGuiThread();
    void probesAgainThreeSecondsAfterAResult();
    void aProbeThatTheLibraryRefusesHasFailed();
    void onlyOneProbeIsOut();
    void answerThatComesTwiceDoesNotDoubleTheProbes();
    void modeWithoutAPlayerIsTheSubStream();
    void streamIndexSelectsThePath_data();
    void streamIndexSelectsThePath();
    void setupHandsOverTheNativeWindow();
    void playNeedsAConnection();
    void unknownSizeIsTheDefault_data();
    void unknownSizeIsTheDefault();
    void figuresArePassedOn();
    void callsCarryTheirArguments();
    void everyOperationGoesToItsCall_data();
    void everyOperationGoesToItsCall();

private:
    std::unique_ptr<CheckLog> m_checks;
};

void TestCameraCore::init()
{
    fake_cammgr::reset();
    m_checks = std::make_unique<CheckLog>();
}

void TestCameraCore::cleanup()
{
    QCOMPARE(m_checks->take(), QStringList());
    m_checks.reset();
    QVERIFY(fake_cammgr::contractViolations().empty());
    fake_cammgr::reset();
}

void TestCameraCore::startsDisconnected()
{
    const CCamera camera;
    QCOMPARE(camera.get_state(), int(CAMERA_STATE_DISCONNECTED));
    QCOMPARE(camera.get_state_code(), -255);
    QVERIFY(!camera.has_player());
    QVERIFY(!camera.is_stopped());
    QCOMPARE(camera.hostname(), QString());
    QCOMPARE(camera.name(), QString());
    QCOMPARE(camera.stream_path(), QString());
    QCOMPARE(camera.get_info(), nullptr);
    QVERIFY(camera.command_codes().isEmpty());
    QVERIFY(camera.command_keys().isEmpty());
    QVERIFY(camera.command_values().isEmpty());
    QVERIFY(fake_cammgr::calls().empty());
}

void TestCameraCore::setInfoCopiesTheRecord()
{
    Session session;
    QCOMPARE(session->set_info(&session.record), 0);
    QCOMPARE(session->get_info(), &session.record);
    session.record.name = "changed";
    QCOMPARE(session->name(), QString("Door"));
    QCOMPARE(session->hostname(), QString("ZLV-1"));
    QCOMPARE(session->stream_path(), QString("/live/1/h264.sdp"));
}

void TestCameraCore::createMakesAPlayerAndSendsAProbe()
{
    Session session;
    QCOMPARE(session->create(), 0);
    QVERIFY(session->has_player());
    const auto player = session.player();
    QCOMPARE(names(player->calls()), QStringList({"RtspPlayer_Create", "RtspPlayer_TickAlive"}));
    QCOMPARE(player->hostname(), std::string("ZLV-1"));
    QCOMPARE(player->username(), std::string("admin"));
    QCOMPARE(player->password(), std::string("secret"));
    QCOMPARE(player->context(),
             static_cast<void *>(static_cast<CCameraCore *>(session.camera.get())));
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
}

void TestCameraCore::createWithoutAPlayerFails()
{
    Session session;
    fake_cammgr::failCreate();
    QCOMPARE(session->create(), -1);
    QVERIFY(!session->has_player());
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
    session->tick_alive();
    QCOMPARE(fake_cammgr::calls().size(), size_t(1));
}

void TestCameraCore::textsGoInTheEncodingOfTheLibrary_data()
{
    QTest::addColumn<bool>("takesUtf8");
    QTest::addColumn<QByteArray>("username");
    QTest::addColumn<QByteArray>("password");
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("another maker's: Latin-1")
        << false << QByteArray("Jos\xe9") << QByteArray("???") << QByteArray("/no/Fot\xc3\xb3s");
    QTest::newRow("ours: UTF-8") << true << QByteArray("Jos\xc3\xa9")
                                 << QByteArray("\xd0\xbf\xd0\xb0\xd1\x80")
                                 << QByteArray("/no/Fot\xc3\x83\xc2\xb3s");
}

void TestCameraCore::textsGoInTheEncodingOfTheLibrary()
{
    QFETCH(bool, takesUtf8);
    QFETCH(QByteArray, username);
    QFETCH(QByteArray, password);
    QFETCH(QByteArray, path);
    fake_cammgr::setTakesUtf8(takesUtf8);
    Session session;
    session.record.username = QStringLiteral("Jos\u00e9");
    session.record.password = QStringLiteral("\u043f\u0430\u0440");
    session->set_info(&session.record);
    session.start();
    QCOMPARE(session.player()->username(), username.toStdString());
    QCOMPARE(session.player()->password(), password.toStdString());
    // A name whose Latin-1 bytes are valid UTF-8.
    const QString folder = QStringLiteral("/no/Fot\u00c3\u00b3s");
    session->snapshot(folder);
    QCOMPARE(session.player()->last("RtspPlayer_Snapshot")->texts.front(), path.toStdString());
    session->begin_writing(folder, 0);
    QCOMPARE(session.player()->last("RtspPlayer_BeginWriting")->texts.front(), path.toStdString());
}

void TestCameraCore::probeResultsMoveTheState_data()
{
    QTest::addColumn<int>("message");
    QTest::addColumn<int>("argument");
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("code");
    QTest::newRow("answered") << 0 << 0 << 1 << 0;
    QTest::newRow("answered, argument ignored") << 0 << 1 << 1 << 0;
    QTest::newRow("unreachable") << 1 << 0 << 2 << -255;
    QTest::newRow("refused") << 1 << 1 << 2 << -256;
    QTest::newRow("other error") << 1 << 2 << 2 << -255;
    QTest::newRow("negative error") << 1 << -1 << 2 << -255;
}

void TestCameraCore::probeResultsMoveTheState()
{
    QFETCH(int, message);
    QFETCH(int, argument);
    Session session;
    session.start();
    QSignalSpy report(session.camera.get(), &CCameraCore::signalStateReport);
    session.player()->send(message, argument);
    QVERIFY(report.count() == 1 || report.wait(deadline));
    QTEST(session->get_state(), "state");
    QTEST(session->get_state_code(), "code");
    QCOMPARE(report.count(), 1);
}

void TestCameraCore::sameResultTwiceOnlyReports()
{
    Session session;
    session.startConnected();
    StateLog log(session.camera.get());
    session->tick_alive();
    session.player()->probeOk();
    deliverAll();
    QCOMPARE(log.take(), QStringList({"report"}));
    session->tick_alive();
    session.player()->probeFailed();
    deliverAll();
    QCOMPARE(log.take(), QStringList({"changed", "report"}));
    session->tick_alive();
    session.player()->probeFailed();
    deliverAll();
    QCOMPARE(log.take(), QStringList({"report"}));
}

void TestCameraCore::changedComesBeforeReport()
{
    Session session;
    StateLog log(session.camera.get());
    session.startConnected();
    QCOMPARE(log.take(), QStringList({"changed", "report"}));
}

void TestCameraCore::codeAloneIsAChange()
{
    Session session;
    session.start();
    StateLog log(session.camera.get());
    session.player()->probeFailed(CAMMGR_ERROR_REFUSED);
    deliverAll();
    QCOMPARE(session->get_state(), int(CAMERA_STATE_DISCONNECTED));
    QCOMPARE(log.take(), QStringList({"changed", "report"}));
}

void TestCameraCore::stateIsHandledOnTheGuiThread()
{
    Session session;
    session.start();
    QThread *event = nullptr;
    QThread *report = nullptr;
    connect(
        session.camera.get(), &CCameraCore::signalCameraEvent, session.camera.get(),
        [&] { event = QThread::currentThread(); }, Qt::DirectConnection);
    connect(
        session.camera.get(), &CCameraCore::signalStateReport, session.camera.get(),
        [&] { report = QThread::currentThread(); }, Qt::DirectConnection);
    session.player()->probeOk();
    QTRY_VERIFY_WITH_TIMEOUT(report, deadline);
    QVERIFY(event != QThread::currentThread());
    QCOMPARE(report, QThread::currentThread());
}

void TestCameraCore::probesAgainThreeSecondsAfterAResult()
{
    Session session;
    session.start();
    auto *const clock = session->findChild<QTimer *>();
    QVERIFY(clock);
    QVERIFY(!clock->isActive());
    QElapsedTimer timer;
    timer.start();
    session.player()->probeFailed();
    deliverAll();
    QVERIFY(clock->isActive());
    QVERIFY(clock->isSingleShot());
    QCOMPARE(clock->interval(), 3000);
    QTRY_COMPARE_WITH_TIMEOUT(session.player()->count("RtspPlayer_TickAlive"), 2, deadline);
    // Qt's coarse timers may be 5 % early.
    QVERIFY2(timer.elapsed() >= 2850, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!clock->isActive());
}

void TestCameraCore::aProbeThatTheLibraryRefusesHasFailed()
{
    fake_cammgr::Script script;
    script.results["RtspPlayer_TickAlive"] = -1;
    fake_cammgr::setDefaults(script);
    Session session;
    StateLog log(session.camera.get());
    session.start();
    // Not from inside the call: a view that probes in its report would probe for ever.
    QCOMPARE(log.take(), QStringList());
    QCoreApplication::sendPostedEvents();
    QCOMPARE(log.take(), QStringList({"report"}));
    QCOMPARE(session->get_state_code(), -255);
    session.player()->change([](fake_cammgr::Script &s) {
        s.results.clear();
        s.probe = fake_cammgr::Probe::Ok;
    });
    QTRY_COMPARE_WITH_TIMEOUT(session->get_state(), int(CAMERA_STATE_CONNECTED), deadline);
}

void TestCameraCore::onlyOneProbeIsOut()
{
    Session session;
    session.start();
    session->tick_alive();
    session->slotCameraTickAlive();
    QCOMPARE(session.player()->count("RtspPlayer_TickAlive"), 1);
    session.player()->probeOk();
    deliverAll();
    session->tick_alive();
    QCOMPARE(session.player()->count("RtspPlayer_TickAlive"), 2);
}

void TestCameraCore::answerThatComesTwiceDoesNotDoubleTheProbes()
{
    Session session;
    session.start();
    for (int i = 0; i < 5; ++i)
        session.player()->probeOk();
    deliverAll();
    QCOMPARE(m_checks->take(),
             CheckLog::camera({"cam_started", "cam_started", "cam_started", "cam_started"}));
    const auto player = session.player();
    player->change([](fake_cammgr::Script &s) { s.probe = fake_cammgr::Probe::Ok; });
    QTRY_COMPARE_WITH_TIMEOUT(player->count("RtspPlayer_TickAlive"), 2, deadline);
    deliverAll();
    QCOMPARE(player->count("RtspPlayer_TickAlive"), 2);
}

void TestCameraCore::modeWithoutAPlayerIsTheSubStream()
{
    Session session;
    QCOMPARE(session->get_mode(), 1);
    session.start();
    session.player()->change([](fake_cammgr::Script &s) { s.mode = 0; });
    QCOMPARE(session->get_mode(), 0);
    session.player()->change([](fake_cammgr::Script &s) { s.mode = 7; });
    QCOMPARE(session->get_mode(), 7);
}

void TestCameraCore::streamIndexSelectsThePath_data()
{
    QTest::addColumn<int>("stream");
    QTest::addColumn<QString>("path");
    QTest::newRow("1") << 1 << "/live/1/h264.sdp";
    QTest::newRow("0") << 0 << "/live/0/h264.sdp";
    QTest::newRow("2") << 2 << "/live/0/h264.sdp";
    QTest::newRow("-1") << -1 << "/live/0/h264.sdp";
}

void TestCameraCore::streamIndexSelectsThePath()
{
    QFETCH(int, stream);
    QFETCH(QString, path);
    Session session;
    session.start();
    QWidget surface;
    QCOMPARE(session->setup_live_stream(stream, &surface), 0);
    QCOMPARE(session->stream_path(), path);
    QCOMPARE(session.player()->path(), path.toStdString());
}

void TestCameraCore::setupHandsOverTheNativeWindow()
{
    Session session;
    session.start();
    QWidget surface;
    session.player()->change(
        [](fake_cammgr::Script &s) { s.results["RtspPlayer_SetupP2PliveStream"] = 5; });
    QCOMPARE(session->setup_live_stream(1, &surface), 5);
    QCOMPARE(session.player()->window(), std::uintptr_t(surface.winId()));
    QCOMPARE(session->setup_live_stream(1, nullptr), 5);
    QCOMPARE(session.player()->window(), std::uintptr_t(0));
}

void TestCameraCore::playNeedsAConnection()
{
    Session session;
    session.start();
    session->play();
    QCOMPARE(session.player()->count("RtspPlayer_Play"), 0);
    session.player()->probeOk();
    deliverAll();
    QCOMPARE(session->play(), 0);
    QCOMPARE(session.player()->count("RtspPlayer_Play"), 1);
    QVERIFY(session->is_playing());
    session->tick_alive();
    session.player()->probeFailed();
    deliverAll();
    session->play();
    QCOMPARE(session.player()->count("RtspPlayer_Play"), 1);
    QCOMPARE(session->stop_play(), 0);
    QVERIFY(!session->is_playing());
}

void TestCameraCore::unknownSizeIsTheDefault_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<QSize>("size");
    QTest::newRow("known") << 1920 << 1080 << QSize(1920, 1080);
    QTest::newRow("zero") << 0 << 0 << QSize(640, 480);
    QTest::newRow("negative") << -1 << -5 << QSize(640, 480);
    QTest::newRow("one") << 1 << 1 << QSize(1, 1);
    QTest::newRow("one of them") << 1280 << 0 << QSize(1280, 480);
}

void TestCameraCore::unknownSizeIsTheDefault()
{
    QFETCH(int, width);
    QFETCH(int, height);
    Session session;
    session.start();
    session.player()->change([&](fake_cammgr::Script &s) {
        s.width = width;
        s.height = height;
    });
    QTEST(QSize(session->get_video_width(), session->get_video_height()), "size");
}

void TestCameraCore::figuresArePassedOn()
{
    Session session;
    session.start();
    session.player()->change([](fake_cammgr::Script &s) {
        s.frameRate = 24;
        s.bitRate = 123456;
        s.hasVideo = 2;
        s.hasAudio = 0;
        s.writing = 3;
        s.uploading = 4;
    });
    QCOMPARE(session->get_frame_rate(), 24);
    QCOMPARE(session->get_bit_rate(), 123456);
    QCOMPARE(session->has_video(), true);
    QCOMPARE(session->has_audio(), false);
    QCOMPARE(session->is_writing(), 3);
    QCOMPARE(session->audio_upload_is_playing(), 4);
}

void TestCameraCore::callsCarryTheirArguments()
{
    Session session;
    session.start();
    const auto player = session.player();
    session->set_volume(137);
    QCOMPARE(player->last("RtspPlayer_SetVolume")->numbers.at(0), std::intptr_t(137));
    QTemporaryDir folder;
    const QString base = folder.path() + "/20260101_000000";
    session->begin_writing(base, 500);
    QCOMPARE(player->last("RtspPlayer_BeginWriting")->texts.at(0), base.toStdString());
    QCOMPARE(player->last("RtspPlayer_BeginWriting")->numbers.at(0), std::intptr_t(500));
    QVERIFY(session->is_writing());
    session->end_writing();
    QVERIFY(!session->is_writing());
    QCOMPARE(session->snapshot(base + ".jpg"), 0);
    QVERIFY(QFile::exists(base + ".jpg"));
    QCOMPARE(session->snapshot(folder.path() + "/absent/x.jpg"), -1);
}

void TestCameraCore::everyOperationGoesToItsCall_data()
{
    QTest::addColumn<QString>("call");
    for (const char *name :
         {"RtspPlayer_Stop", "RtspPlayer_IsPlaying", "AudioUpload_Play", "AudioUpload_Stop",
          "AudioUpload_IsPlaying", "RtspPlayer_SetVolume", "RtspPlayer_Snapshot",
          "RtspPlayer_BeginWriting", "RtspPlayer_EndWriting", "RtspPlayer_IsWriting",
          "RtspPlayer_GetVideoFrameRate", "RtspPlayer_GetBitRate"})
        QTest::newRow(name) << name;
}

void TestCameraCore::everyOperationGoesToItsCall()
{
    QFETCH(QString, call);
    Session session;
    session.start();
    const auto player = session.player();
    player->change([&](fake_cammgr::Script &s) { s.results[call.toStdString()] = 42; });
    player->forgetCalls();
    CCamera &camera = *session.camera;
    const QMap<QString, std::function<int()>> operations{
        {"RtspPlayer_Stop", [&] { return camera.stop_play(); }},
        {"RtspPlayer_IsPlaying", [&] { return camera.is_playing(); }},
        {"AudioUpload_Play", [&] { return camera.audio_upload_play(); }},
        {"AudioUpload_Stop", [&] { return camera.audio_upload_stop(); }},
        {"AudioUpload_IsPlaying", [&] { return camera.audio_upload_is_playing(); }},
        {"RtspPlayer_SetVolume", [&] { return camera.set_volume(1); }},
        {"RtspPlayer_Snapshot", [&] { return camera.snapshot(QDir::tempPath() + "/absent/x"); }},
        {"RtspPlayer_BeginWriting", [&] { return camera.begin_writing("x", 1); }},
        {"RtspPlayer_EndWriting", [&] { return camera.end_writing(); }},
        {"RtspPlayer_IsWriting", [&] { return camera.is_writing(); }},
        {"RtspPlayer_GetVideoFrameRate", [&] { return camera.get_frame_rate(); }},
        {"RtspPlayer_GetBitRate", [&] { return camera.get_bit_rate(); }}};
    if (call == "RtspPlayer_Snapshot")
        player->change([](fake_cammgr::Script &s) { s.snapshotWrites = false; });
    QCOMPARE(operations[call](), 42);
    QCOMPARE(names(player->calls()), QStringList(call));
    player->change([](fake_cammgr::Script &s) { s.results.clear(); });
}

QTEST_MAIN(TestCameraCore)
#include "tst_camera_core.moc"
