#include "resources/resources.h"
#include "tests/support/tool_tip_text.h"
#include "tests/ui/common/shown_tip.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/live/multi_live_item_form.h"
#include "ui/live/play_camera_form.h"
#include "ui/live/video_frame.h"

#include <QLabel>
#include <QToolButton>

/// How the single view and a tile of the grid handle the session's reports: when they request one,
/// and what they show of a recording that is not written.
class TestLiveReports : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void theFirstPictureIsToldAtOnce_data() { views(); }
    void theFirstPictureIsToldAtOnce();
    void oneReportIsAskedForEachStart_data() { views(); }
    void oneReportIsAskedForEachStart();
    void anotherStreamOnANewWindowIsToldAtOnce();
    void nothingIsAskedWhileDisconnected_data() { views(); }
    void nothingIsAskedWhileDisconnected();
    void startingTwiceHasOneReceiver_data() { views(); }
    void startingTwiceHasOneReceiver();
    void destructionStopsTheStream_data() { views(); }
    void destructionStopsTheStream();

    void aRefusedRecordingIsToldOnce_data() { views(); }
    void aRefusedRecordingIsToldOnce();
    void theToolTipOfTheLampIsReadable_data() { views(); }
    void theToolTipOfTheLampIsReadable();
    void aRecordingThatStopsIsTold_data() { views(); }
    void aRecordingThatStopsIsTold();
    void aRecordingThatWaitsForTheDiskIsTold_data() { views(); }
    void aRecordingThatWaitsForTheDiskIsTold();
    void leavingEndsWhatWasTold_data() { views(); }
    void leavingEndsWhatWasTold();
    void aRefusedRecordingLeavesNoStill();
    void theStillOfAnotherClipIsKept();

private:
    static void views()
    {
        QTest::addColumn<bool>("single");
        QTest::newRow("one camera") << true;
        QTest::newRow("tile") << false;
    }
    QWidget *view() const;
    template <typename T>
    T *child(const char *name) const
    {
        return view()->findChild<T *>(QLatin1String(name));
    }
    QString status() const { return child<QLabel>("labelStatus")->text(); }
    QString lampTip() const { return shownByToolTip(child<QLabel>("labelRecording")->toolTip()); }
    int probes() const { return m_live->count("RtspPlayer_TickAlive"); }

    void start();
    void stop();
    void setRecording(bool recording);
    /// The probe that is out is answered, and what hangs on it has run.
    void answerProbe() { m_live->connectCamera(); }
    void play();

    bool m_single = true;
    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<CPlayCameraForm> m_form;
    std::unique_ptr<CMultiLiveItemForm> m_tile;
};

void TestLiveReports::init()
{
    m_live = std::make_unique<LiveFixture>();
    m_live->addCameras({QStringLiteral("H")});
}

void TestLiveReports::cleanup()
{
    m_form.reset();
    m_tile.reset();
    m_live.reset();
}

QWidget *TestLiveReports::view() const
{
    return m_single ? static_cast<QWidget *>(m_form.get()) : m_tile.get();
}

void TestLiveReports::start()
{
    if (!m_form && !m_tile) {
        m_single = qstrcmp(QTest::currentDataTag(), "tile") != 0;
        if (m_single)
            m_form = std::make_unique<CPlayCameraForm>(nullptr, m_live->clock());
        else
            m_tile = std::make_unique<CMultiLiveItemForm>(m_live->clock(), nullptr);
        view()->resize(800, 700);
        view()->show();
        QVERIFY(QTest::qWaitForWindowExposed(view()));
    }
    if (m_single) {
        m_form->SetCamera(m_live->camera());
        m_form->StartPlay();
    } else {
        m_tile->setCamera(m_live->camera());
        m_tile->start();
    }
}

void TestLiveReports::stop()
{
    if (m_single)
        m_form->StopPlay();
    else
        m_tile->stop();
}

void TestLiveReports::setRecording(bool recording)
{
    if (m_single)
        QTest::mouseClick(child<QWidget>("btnRecord"), Qt::LeftButton);
    else
        m_tile->setRecording(recording);
}

void TestLiveReports::play()
{
    start();
    answerProbe();
    answerProbe();
    QVERIFY(m_live->camera()->is_playing());
}

void TestLiveReports::theFirstPictureIsToldAtOnce()
{
    start();
    answerProbe();
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
    QCOMPARE(
        m_live->calls({QStringLiteral("RtspPlayer_Play"), QStringLiteral("RtspPlayer_TickAlive")})
            .mid(1),
        (QStringList{QStringLiteral("RtspPlayer_Play"), QStringLiteral("RtspPlayer_TickAlive")}));
    // The library answers when the picture is there, long before the next probe would be sent.
    QVERIFY(m_live->player()->probeOutstanding());
    answerProbe();
    QVERIFY2(status().startsWith(QStringLiteral("640x360")), qPrintable(status()));
    QCOMPARE(child<QWidget>("frameVideoFrame")->size(), QSize(640, 360));
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), m_single ? 100 : 0);
    QVERIFY(!m_live->player()->probeOutstanding());
}

void TestLiveReports::oneReportIsAskedForEachStart()
{
    m_live->change([](auto &script) { script.playPlays = false; });
    start();
    answerProbe();
    const int asked = probes();
    // A library that answers at once would be probed without end.
    answerProbe();
    m_live->reports(3);
    QCOMPARE(m_live->count("RtspPlayer_Play"), 5);
    QCOMPARE(probes(), asked);

    m_live->setPlaying(true);
    m_live->reports(2);
    QCOMPARE(probes(), asked);
    // A stream that is lost starts again.
    m_live->setPlaying(false);
    m_live->reports(2);
    QCOMPARE(probes(), asked + 1);
}

void TestLiveReports::anotherStreamOnANewWindowIsToldAtOnce()
{
    play();
    const int asked = probes();
    QWidget *surface = child<CVideoFrame>("frameVideoFrame")->renderSurface();
    const WId before = surface->winId();
    surface->setAttribute(Qt::WA_NativeWindow, false);
    surface->setWindowFlags(Qt::Window);
    surface->setWindowFlags(Qt::Widget);
    surface->show();
    QVERIFY(surface->winId() != before);
    m_live->report();
    QCOMPARE(probes(), asked + 1);
}

void TestLiveReports::nothingIsAskedWhileDisconnected()
{
    start();
    m_live->failCamera();
    const int asked = probes();
    m_live->reports(3);
    QCOMPARE(probes(), asked);
    QCOMPARE(m_live->count("RtspPlayer_Play"), 0);
    m_live->camera()->tick_alive();
    answerProbe();
    QCOMPARE(m_live->count("RtspPlayer_Play"), 1);
    QCOMPARE(probes(), asked + 2);
}

void TestLiveReports::startingTwiceHasOneReceiver()
{
    start();
    start();
    answerProbe();
    QCOMPARE(m_live->count("RtspPlayer_Play"), 1);
    stop();
    m_live->reports(2);
    QCOMPARE(m_live->count("RtspPlayer_Play"), 1);
}

void TestLiveReports::destructionStopsTheStream()
{
    play();
    m_form.reset();
    m_tile.reset();
    QVERIFY(!m_live->camera()->is_playing());
    m_live->reports(2);
}

void TestLiveReports::aRefusedRecordingIsToldOnce()
{
    m_live->change([](auto &script) { script.results["RtspPlayer_BeginWriting"] = -1; });
    play();
    QCOMPARE(lampTip(), QString());
    setRecording(true);
    const QString trouble = QStringLiteral(
        "Camera H is not being recorded: the album folder cannot be written, or the disk is full.");
    QCOMPARE(lampTip(), trouble);
    QCOMPARE(m_live->host.statuses, QStringList{trouble});
    // The lamp still shows what was requested.
    QVERIFY(!child<QLabel>("labelRecording")->styleSheet().isEmpty());
    m_live->reports(3);
    QCOMPARE(m_live->host.statuses, QStringList{trouble});
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);

    setRecording(false);
    QCOMPARE(lampTip(), QString());
    QCOMPARE(m_live->host.statuses, (QStringList{trouble, QString()}));
}

void TestLiveReports::theToolTipOfTheLampIsReadable()
{
    m_live->change([](auto &script) { script.results["RtspPlayer_BeginWriting"] = -1; });
    play();
    setRecording(true);
    view()->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(view()));
    const ShownTip tip(child<QLabel>("labelRecording"));
    QCOMPARE(tip.text(), child<QLabel>("labelRecording")->toolTip());
    QCOMPARE(tip.picture(), ShownTip(view(), tip.text()).picture());
}

void TestLiveReports::aRecordingThatStopsIsTold()
{
    play();
    setRecording(true);
    m_live->reports(2);
    QCOMPARE(m_live->host.statuses, QStringList());
    QCOMPARE(lampTip(), QString());
    m_live->change([](auto &script) { script.writing = 0; });
    m_live->reports(3);
    QCOMPARE(m_live->host.statuses.size(), 1);
    QCOMPARE(lampTip(), m_live->host.statuses.first());
    // It continues: there is space again, or the camera was lost meanwhile.
    m_live->change([](auto &script) { script.writing = 1; });
    m_live->reports(2);
    QCOMPARE(lampTip(), QString());
    QCOMPARE(m_live->host.statuses.size(), 2);
    QCOMPARE(m_live->host.statuses.last(), QString());
}

void TestLiveReports::aRecordingThatWaitsForTheDiskIsTold()
{
    play();
    setRecording(true);
    m_live->change([](auto &script) { script.writing = CAMMGR_WRITING_WAITS; });
    m_live->reports(3);
    QCOMPARE(m_live->host.statuses.size(), 1);
    QCOMPARE(lampTip(), m_live->host.statuses.first());
    // The library begins the next clip by itself.
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
    m_live->change([](auto &script) { script.writing = CAMMGR_WRITING; });
    m_live->reports(2);
    QCOMPARE(lampTip(), QString());

    // The button still ends it.
    m_live->change([](auto &script) { script.writing = CAMMGR_WRITING_WAITS; });
    setRecording(false);
    QCOMPARE(m_live->count("RtspPlayer_EndWriting"), 1);
}

void TestLiveReports::leavingEndsWhatWasTold()
{
    m_live->change([](auto &script) { script.results["RtspPlayer_BeginWriting"] = -1; });
    play();
    setRecording(true);
    stop();
    QCOMPARE(m_live->host.statuses.size(), 2);
    QCOMPARE(m_live->host.statuses.last(), QString());
    QCOMPARE(lampTip(), QString());
}

void TestLiveReports::aRefusedRecordingLeavesNoStill()
{
    m_live->change([](auto &script) { script.results["RtspPlayer_BeginWriting"] = -1; });
    play();
    setRecording(true);
    QVERIFY(!m_live->lastText("RtspPlayer_Snapshot").isEmpty());
    QCOMPARE(QDir(m_live->folder()).entryList(QDir::Files), QStringList());
}

void TestLiveReports::theStillOfAnotherClipIsKept()
{
    play();
    setRecording(true);
    QFile clip(m_live->folder() + QStringLiteral("/20240305_070809.mp4"));
    QVERIFY(clip.open(QIODevice::WriteOnly));
    setRecording(false);
    m_live->change([](auto &script) { script.results["RtspPlayer_BeginWriting"] = -1; });
    setRecording(true); // within the same second
    QVERIFY(QFile::exists(clip.fileName() + QStringLiteral(".jpeg")));
}

QTEST_MAIN(TestLiveReports)
#include "tst_live_reports.moc"
