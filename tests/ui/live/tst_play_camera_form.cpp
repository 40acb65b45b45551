#include "ui/live/play_camera_form.h"

#include "resources/resources.h"
#include "tests/support/declared.h"
#include "tests/support/tool_tip_text.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/common/video_area_frame.h"
#include "ui/common/volume_slider_form.h"
#include "ui/live/video_frame.h"

#include <QLabel>
#include <QSlider>
#include <QToolButton>
#include <QWindow>

namespace {
constexpr int deadline = LiveFixture::deadline;
}

class TestPlayCameraForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void slotsStandInOrder();
    void theFormHasItsObjectsAndTexts();
    void withoutACameraNothingHappens();
    void setCameraShowsItsNameConnecting();
    void startSetsUpTheStreamOfTheSessionsMode_data();
    void startSetsUpTheStreamOfTheSessionsMode();
    void startAsksForAProbeUnlessOneIsOut();
    void startingTwiceReportsOnce();
    void aReportWhileNotPlayingRetries();
    void playIsLeftToTheNextReportWhileDisconnected();
    void theFirstPlayingReportLaysOut();
    void theThumbnailIsTakenThreeReportsAfterConnectingAndThenAll60();
    void aReconnectCountsToTheFirstThumbnailAgain();
    void statusLine_data();
    void statusLine();
    void statusLineShowsTheScaleShownAndNotTheZoomStep();
    void aStreamWithoutSizeDoesNotCrashTheView();
    void zoomButtonsWalkTheList();
    void zoomingOutOfAFittedPictureStartsFromItsTrueScale();
    void zoomWithoutAStreamHasNoEffectOnIt();
    void aResizeReturnsToTheNaturalZoom();
    void thePictureSizeIsTheSurfaceSize();
    void aStreamThatChangesItsSizeIsLaidOutAnew();
    void debugLinesToTheLetter();
    void fullHdInItsArea();
    void aDoubleClickTogglesFullScreen();
    void escapeLeavesAndEntersFullScreen();
    void theFullScreenButtonOnlyEnters();
    void aReconnectInFullScreenStaysThere();
    void theStreamFollowsANewNativeWindow();
    void streamAndRecordingGoOnThroughTheFullScreen();
    void aFocusedPictureShowsIt();
    void stoppingLeavesFullScreen();
    void destructionInFullScreen();
    void volumeIsGivenWhilePlaying();
    void muteGivesVolumeZeroAndBack();
    void eachReportGivesTheVolumeAgain();
    void snapshotPlaysItsSoundFirstAndWritesTheNamedFile();
    void snapshotWithoutAPlayingCameraOnlySounds();
    void snapshotMakesTheMissingFolder();
    void recordTakesTheStillAndWritesToTheBase();
    void recordOffEndsWriting();
    void recordWhileTheSessionWritesAlreadyDoesNothing();
    void aRecordingRequestedBeforeThePictureStartsWithIt();
    void recordingResumesAfterAReconnectInANewFile();
    void twoRecordingsInTheSameSecondHaveTheSameName();
    void theRecordIndicatorFollows();
    void talkBackStartsAndStops();
    void talkBackIsRestartedWhenTheUploadHasEnded();
    void talkBackThatCannotStartSaysWhy_data();
    void talkBackThatCannotStartSaysWhy();
    void talkBackIsNotRestartedWhileDisconnected();
    void backAsksForTheCameraPage();
    void stopEndsEverythingAndForgetsTheCamera();
    void aReportThatIsUnderWayAtStopIsPassedOver();
    void theSessionMayBeDestroyedWhileItIsShown();
    void aWriteThatFailsIsNotReported();
    void aNameWithMarkupIsShownAsItIs();
    void thePageFitsTheSmallestWindow();
    void thePanelDoesNotMoveWithTheFocus();
    void theKeyboardReachesEveryControl();

private:
    template <typename T = QWidget>
    T *child(const char *name) const
    {
        return m_form->findChild<T *>(QString::fromLatin1(name));
    }
    void click(const char *button) { QTest::mouseClick(child(button), Qt::LeftButton); }
    QString status() const { return child<QLabel>("labelStatus")->text(); }
    QWidget *surface() const { return child<CVideoFrame>("frameVideoFrame")->renderSurface(); }
    bool hasIcon(const char *button, const QString &image) const;
    QSize shownPicture() const { return child("frameVideoFrame")->size(); }

    /// Shows the camera with this stream, until its first picture has been laid out.
    void play(int width = 640, int height = 360);

    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<CPlayCameraForm> m_form;
};

void TestPlayCameraForm::init()
{
    m_live = std::make_unique<LiveFixture>();
    m_live->addCameras({QStringLiteral("H")});
    m_form = std::make_unique<CPlayCameraForm>(nullptr, m_live->clock());
    m_form->resize(1012, 820);
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
}

void TestPlayCameraForm::cleanup()
{
    m_form.reset();
    m_live.reset();
}

bool TestPlayCameraForm::hasIcon(const char *button, const QString &image) const
{
    const QIcon icon = child<QToolButton>(button)->icon();
    return icon.pixmap(32, 32).toImage() == QIcon(image).pixmap(32, 32).toImage();
}

void TestPlayCameraForm::play(int width, int height)
{
    m_live->change([=](auto &script) {
        script.width = width;
        script.height = height;
    });
    m_form->SetCamera(m_live->camera());
    m_form->StartPlay();
    m_live->connectCamera(); // plays
    QVERIFY(m_form->IsPlaying());
    m_live->report(); // lays out
}

void TestPlayCameraForm::slotsStandInOrder()
{
    const QStringList wanted{QStringLiteral("slotVideoAreaResize()"),
                             QStringLiteral("slotCameraStatusChanged()"),
                             QStringLiteral("slotTimer()"),
                             QStringLiteral("slotSnapshot()"),
                             QStringLiteral("slotRecord()"),
                             QStringLiteral("slotZoomIn()"),
                             QStringLiteral("slotZoomOut()"),
                             QStringLiteral("slotFullScreen()"),
                             QStringLiteral("slotVideoDoubleClicked()"),
                             QStringLiteral("slotMuteChanged(bool)"),
                             QStringLiteral("slotVolumeChanged(int)"),
                             QStringLiteral("slotBack()"),
                             QStringLiteral("slotOvolumeClicked()")};
    QCOMPARE(declared(CPlayCameraForm::staticMetaObject, QMetaMethod::Slot), wanted);
}

void TestPlayCameraForm::theFormHasItsObjectsAndTexts()
{
    QCOMPARE(m_form->objectName(), QStringLiteral("PlayCameraForm"));
    QVERIFY(child<QFrame>("framePlayCamera"));
    QCOMPARE(child("frameVideoClient")->parentWidget(), child("frameVideoArea"));
    QVERIFY(child<CVideoAreaFrame>("frameVideoArea"));
    QVERIFY(child<CVolumeSliderForm>("sliderVolume"));
    QVERIFY(child<QFrame>("framePanel"));
    QVERIFY(child<QFrame>("frameButtonsCenter"));
    QCOMPARE(status(), QStringLiteral("Camera Name"));
    QCOMPARE(child("labelStatus")->font().family(), QStringLiteral("Arial"));
    QVERIFY(child("labelRecording"));
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        QCOMPARE(child("frameVideoFrame")->palette().color(group, QPalette::Window),
                 QColor(Qt::black));
    }
    QVERIFY(child("frameVideoFrame")->autoFillBackground());

    const QList<QPair<const char *, const char *>> buttons{
        {"btnSnapshot", "snapshotbtn_default"},     {"btnRecord", "recordbtn_default"},
        {"btnZoomIn", "zoominbtn_default"},         {"btnZoomOut", "zoomoutbtn_default"},
        {"btnFullScreen", "fullscreenbtn_default"}, {"btnBack", "backbtn_default"},
        {"btnOutVolume", "outvolumebtn_default"}};
    for (const auto &[name, image] : buttons) {
        const QString path = QStringLiteral(":/images/panelbtn/%1.png").arg(image);
        QVERIFY2(QFile::exists(path), image);
        QVERIFY2(hasIcon(name, path), name);
    }
    QCOMPARE(child("btnRecord")->toolTip(), QStringLiteral("Record"));
    QCOMPARE(child("btnZoomIn")->toolTip(), QStringLiteral("ZoomIn"));
    QCOMPARE(child("btnZoomOut")->toolTip(), QStringLiteral("ZoomOut"));
    QCOMPARE(child("btnFullScreen")->toolTip(), QStringLiteral("FullScreen"));
    QCOMPARE(child("btnBack")->toolTip(), QStringLiteral("Back"));
    QCOMPARE(child<CVolumeSliderForm>("sliderVolume")->value(), 100);
    QCOMPARE(child("sliderVolume")->findChild<QSlider *>()->maximum(), 200);
}

void TestPlayCameraForm::withoutACameraNothingHappens()
{
    m_form->SetCamera(nullptr);
    m_form->StartPlay();
    QVERIFY(!m_form->IsPlaying());
    for (const char *button :
         {"btnSnapshot", "btnRecord", "btnZoomIn", "btnZoomOut", "btnOutVolume"})
        click(button);
    m_form->slotTimer();
    m_form->slotCameraStatusChanged();
    m_form->StopPlay();
    QCOMPARE(status(), QStringLiteral("Camera Name"));
    QCOMPARE(m_live->desktop.sounds.size(), 1);
    QVERIFY(hasIcon("btnRecord", QStringLiteral(":/images/panelbtn/recordbtn_down.png")));
    QVERIFY(hasIcon("btnOutVolume", QStringLiteral(":/images/panelbtn/outvolumebtn_down.png")));
    QVERIFY(!QDir(m_live->folder()).exists());
}

void TestPlayCameraForm::setCameraShowsItsNameConnecting()
{
    m_form->SetCamera(m_live->camera());
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
    // Also over a picture that is already there.
    m_live->setPlaying(true);
    m_form->SetCamera(m_live->camera());
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
    m_live->setPlaying(false);
}

void TestPlayCameraForm::startSetsUpTheStreamOfTheSessionsMode_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("path");
    QTest::newRow("main") << 0 << "/live/0/h264.sdp";
    QTest::newRow("sub") << 1 << "/live/1/h264.sdp";
}

void TestPlayCameraForm::startSetsUpTheStreamOfTheSessionsMode()
{
    QFETCH(int, mode);
    QFETCH(QString, path);
    m_live->change([mode](auto &script) { script.mode = mode; });
    m_form->SetCamera(m_live->camera());
    QVERIFY(!surface());
    m_form->StartPlay();
    QVERIFY(surface());
    QCOMPARE(QString::fromStdString(m_live->player()->path()), path);
    QCOMPARE(WId(m_live->player()->window()), surface()->winId());

    QWidget *before = surface();
    m_form->StartPlay();
    QVERIFY(surface() != before);
    QCOMPARE(WId(m_live->player()->window()), surface()->winId());
}

void TestPlayCameraForm::startAsksForAProbeUnlessOneIsOut()
{
    m_live->player()->probeOk();
    QTRY_COMPARE_WITH_TIMEOUT(m_live->camera()->get_state(), int(CAMERA_STATE_CONNECTED), deadline);
    m_live->player()->forgetCalls();
    m_form->SetCamera(m_live->camera());
    m_form->StartPlay();
    QCOMPARE(m_live->calls({QStringLiteral("RtspPlayer_SetupP2PliveStream"),
                            QStringLiteral("RtspPlayer_TickAlive")}),
             (QStringList{QStringLiteral("RtspPlayer_SetupP2PliveStream"),
                          QStringLiteral("RtspPlayer_TickAlive")}));
    m_form->StartPlay();
    QCOMPARE(m_live->count("RtspPlayer_TickAlive"), 1);
}

void TestPlayCameraForm::startingTwiceReportsOnce()
{
    m_form->SetCamera(m_live->camera());
    m_form->StartPlay();
    m_form->StartPlay();
    m_live->connectCamera();
    QCOMPARE(m_live->count("RtspPlayer_Play"), 1);
}

void TestPlayCameraForm::aReportWhileNotPlayingRetries()
{
    m_live->change([](auto &script) { script.playPlays = false; });
    m_form->SetCamera(m_live->camera());
    m_form->StartPlay();
    m_live->connectCamera();
    QCOMPARE(m_live->count("RtspPlayer_Play"), 1);
    m_live->reports(3);
    QCOMPARE(m_live->count("RtspPlayer_Play"), 4);
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
}

void TestPlayCameraForm::playIsLeftToTheNextReportWhileDisconnected()
{
    m_form->SetCamera(m_live->camera());
    m_form->StartPlay();
    m_live->failCamera();
    m_live->reports(2);
    QCOMPARE(m_live->count("RtspPlayer_Play"), 0);
    m_live->camera()->tick_alive();
    m_live->player()->probeOk();
    QTRY_COMPARE_WITH_TIMEOUT(m_live->count("RtspPlayer_Play"), 1, deadline);
}

void TestPlayCameraForm::theFirstPlayingReportLaysOut()
{
    m_form->SetCamera(m_live->camera());
    m_form->StartPlay();
    m_live->connectCamera();
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
    QCOMPARE(m_live->count("RtspPlayer_SetVolume"), 0);
    m_live->report();
    QCOMPARE(status(), QStringLiteral("640x360(100%)  15FPS 512.00Kbps"));
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 100);
    QCOMPARE(m_live->count("RtspPlayer_SetVolume"), 1);
    QCOMPARE(shownPicture(), QSize(640, 360));
}

void TestPlayCameraForm::theThumbnailIsTakenThreeReportsAfterConnectingAndThenAll60()
{
    play();
    const QString thumb = m_live->folder() + QStringLiteral("/thumb.jpeg");
    m_live->reports(3);
    QVERIFY(!QFile::exists(thumb));
    m_live->report();
    QVERIFY(QFile::exists(thumb));
    QCOMPARE(m_live->lastText("RtspPlayer_Snapshot"), thumb);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 1);
    m_live->reports(60);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 1);
    m_live->report();
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 2);
}

void TestPlayCameraForm::aReconnectCountsToTheFirstThumbnailAgain()
{
    play();
    m_live->reports(4);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 1);
    m_live->setPlaying(false);
    m_live->report(); // plays
    m_live->report(); // lays out
    m_live->reports(3);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 1);
    m_live->report();
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 2);
}

void TestPlayCameraForm::statusLine_data()
{
    QTest::addColumn<int>("bitRate");
    QTest::addColumn<QString>("text");
    QTest::newRow("999") << 999 << "640x360(100%)  25FPS 999bps";
    QTest::newRow("1000") << 1000 << "640x360(100%)  25FPS 1.00Kbps";
    QTest::newRow("999999") << 999999 << "640x360(100%)  25FPS 999.99Kbps";
    QTest::newRow("1000000") << 1000000 << "640x360(100%)  25FPS 1.00Mbps";
    QTest::newRow("1234567") << 1234567 << "640x360(100%)  25FPS 1.23Mbps";
}

void TestPlayCameraForm::statusLine()
{
    QFETCH(int, bitRate);
    QFETCH(QString, text);
    play();
    m_live->change([bitRate](auto &script) {
        script.frameRate = 25;
        script.bitRate = bitRate;
    });
    m_live->report();
    QCOMPARE(status(), text);
    QCOMPARE(shownByToolTip(child("labelStatus")->toolTip()), text);
}

void TestPlayCameraForm::statusLineShowsTheScaleShownAndNotTheZoomStep()
{
    play(64, 48);
    QVERIFY2(status().startsWith(QStringLiteral("64x48(125%)  ")), qPrintable(status()));
    // 150 % would still be less than 100 pixels wide.
    click("btnZoomIn");
    m_live->report();
    QVERIFY2(status().startsWith(QStringLiteral("64x48(200%)  ")), qPrintable(status()));
}

void TestPlayCameraForm::aStreamWithoutSizeDoesNotCrashTheView()
{
    play(0, 0);
    QVERIFY(m_form->IsPlaying());
    QCOMPARE(status(), QStringLiteral("640x480(100%)  15FPS 512.00Kbps"));
    m_live->change([](auto &script) {
        script.width = -1;
        script.height = 0;
    });
    click("btnZoomIn");
    m_form->resize(700, 600);
    m_live->reports(2);
    QVERIFY(status().startsWith(QStringLiteral("640x480(")));
}

void TestPlayCameraForm::zoomButtonsWalkTheList()
{
    play(320, 180);
    QCOMPARE(shownPicture(), QSize(320, 180));
    click("btnZoomIn");
    QCOMPARE(shownPicture(), QSize(400, 225));
    click("btnZoomIn");
    QCOMPARE(shownPicture(), QSize(480, 270));
    click("btnZoomIn");
    QCOMPARE(shownPicture(), QSize(640, 360));
    for (const QSize &size :
         {QSize(480, 270), QSize(400, 225), QSize(320, 180), QSize(240, 135), QSize(192, 108)}) {
        click("btnZoomOut");
        QCOMPARE(shownPicture(), size);
    }
    // At 50 % it would be 90 pixels high: one step larger again.
    click("btnZoomOut");
    QCOMPARE(shownPicture(), QSize(192, 108));
}

void TestPlayCameraForm::zoomingOutOfAFittedPictureStartsFromItsTrueScale()
{
    m_form->resize(1012, 820);
    play(1920, 1080);
    const int fitted = shownPicture().width();
    QCOMPARE(fitted, child("frameVideoArea")->width() - 30);
    QVERIFY(fitted * 100 / 1920 >= 50);
    click("btnZoomIn");
    QCOMPARE(shownPicture().width(), fitted);
    click("btnZoomOut");
    const int truth = fitted * 100 / 1920;
    QCOMPARE(shownPicture().width(), (truth > 50 ? 50 : 40) * 1920 / 100);
}

void TestPlayCameraForm::zoomWithoutAStreamHasNoEffectOnIt()
{
    m_form->SetCamera(m_live->camera());
    m_form->StartPlay();
    const QSize whole = child("frameVideoArea")->size() - QSize(30, 48);
    click("btnZoomIn");
    QCOMPARE(shownPicture(), whole);
    click("btnZoomOut");
    QCOMPARE(shownPicture(), whole);
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
}

void TestPlayCameraForm::aResizeReturnsToTheNaturalZoom()
{
    play(320, 180);
    click("btnZoomIn");
    click("btnZoomIn");
    QCOMPARE(shownPicture(), QSize(480, 270));
    m_form->resize(900, 700);
    QTRY_COMPARE_WITH_TIMEOUT(shownPicture(), QSize(320, 180), deadline);
    click("btnZoomIn");
    QCOMPARE(shownPicture(), QSize(400, 225));
}

void TestPlayCameraForm::thePictureSizeIsTheSurfaceSize()
{
    play(320, 180);
    QWidget *box = child("frameVideoClient");
    QWidget *area = child("frameVideoArea");
    const QPoint expected(15 + (area->width() - 30 - 320) / 2,
                          15 + (area->height() - 48 - 180) / 2);
    QCOMPARE(box->geometry(), QRect(expected - QPoint(6, 5), QSize(320 + 13, 180 + 31)));
    QCOMPARE(child("frameVideoFrame")->geometry(), QRect(6, 5, 320, 180));
    QCOMPARE(surface()->size(), QSize(320, 180));
    QCOMPARE(child("framePanel")->geometry(), QRect(6, 185, 320, 18));
}

void TestPlayCameraForm::aStreamThatChangesItsSizeIsLaidOutAnew()
{
    play(320, 180);
    click("btnRecord");
    m_live->change([](auto &script) {
        script.width = 320;
        script.height = 240;
    });
    m_live->report();
    QCOMPARE(shownPicture(), QSize(320, 240));
    QVERIFY(status().startsWith(QStringLiteral("320x240(100%)  ")));
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
}

void TestPlayCameraForm::debugLinesToTheLetter()
{
    play(320, 180);
    const LogLines log;
    click("btnZoomIn");
    QCOMPARE(log.starting(QStringLiteral("CalculateVideoSize()")),
             QStringList{QStringLiteral("CalculateVideoSize() 125 (400 225)\r\n")});
    QCOMPARE(log.starting(QStringLiteral("resizeVideoWindow()")),
             QStringList{QStringLiteral("resizeVideoWindow() (400 225)\r\n")});
}

void TestPlayCameraForm::fullHdInItsArea()
{
    QWidget *area = child("frameVideoArea");
    m_form->resize(m_form->size() + QSize(1000, 700) - area->size());
    QTRY_COMPARE_WITH_TIMEOUT(area->size(), QSize(1000, 700), deadline);
    const LogLines log;
    play(1920, 1080);
    QCOMPARE(child("frameVideoClient")->geometry(),
             QRect(QPoint(15 - 6, 68 - 5), QPoint(984 + 7, 612 + 26)));
    QVERIFY(status().startsWith(QStringLiteral("1920x1080(50%)  ")));
    QVERIFY(log.starting(QStringLiteral("CalculateVideoSize()"))
                .contains(QStringLiteral("CalculateVideoSize() fSrc:1.777778 fDest:1.487730\r\n")));
    QVERIFY(log.starting(QStringLiteral("CalculateVideoSize()"))
                .contains(QStringLiteral("CalculateVideoSize() 50 (970 545)\r\n")));
}

void TestPlayCameraForm::aDoubleClickTogglesFullScreen()
{
    play();
    QWidget *frame = child("frameVideoFrame");
    QTest::mouseDClick(surface(), Qt::LeftButton);
    QCOMPARE(frame->windowType(), Qt::Window);
    QVERIFY(frame->isFullScreen());
    QTRY_COMPARE_WITH_TIMEOUT(surface()->size(), frame->size(), deadline);
    QVERIFY(surface()->isVisible());

    QTest::mouseDClick(surface(), Qt::LeftButton);
    QVERIFY(!frame->isWindow());
    QCOMPARE(frame->windowType(), Qt::SubWindow);
    QVERIFY(frame->isVisible());
    QTRY_COMPARE_WITH_TIMEOUT(frame->geometry(), QRect(6, 5, 640, 360), deadline);
    QTRY_COMPARE_WITH_TIMEOUT(surface()->size(), QSize(640, 360), deadline);

    QTest::mouseDClick(surface(), Qt::RightButton);
    QVERIFY(!frame->isWindow());
}

void TestPlayCameraForm::escapeLeavesAndEntersFullScreen()
{
    play();
    QWidget *frame = child("frameVideoFrame");
    click("btnFullScreen");
    QVERIFY(frame->isFullScreen());
    QTRY_VERIFY_WITH_TIMEOUT(frame->hasFocus(), deadline);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    QVERIFY(!frame->isWindow());
    QTRY_VERIFY_WITH_TIMEOUT(frame->hasFocus(), deadline);
    QTest::keyClick(frame, Qt::Key_Escape);
    QVERIFY(frame->isFullScreen());
}

void TestPlayCameraForm::theFullScreenButtonOnlyEnters()
{
    play();
    click("btnFullScreen");
    click("btnFullScreen");
    QVERIFY(child("frameVideoFrame")->isFullScreen());
}

void TestPlayCameraForm::aReconnectInFullScreenStaysThere()
{
    play();
    QWidget *frame = child("frameVideoFrame");
    click("btnFullScreen");
    QVERIFY(QTest::qWaitForWindowExposed(frame));
    QSignalSpy hidden(frame->windowHandle(), &QWindow::visibleChanged);
    m_live->setPlaying(false);
    m_live->reports(3);
    QVERIFY(m_form->IsPlaying());
    QVERIFY(frame->isFullScreen());
    QCOMPARE(hidden.count(), 0);
    m_form->resize(800, 700);
    QCoreApplication::processEvents();
    QVERIFY(frame->isFullScreen());
}

void TestPlayCameraForm::theStreamFollowsANewNativeWindow()
{
    play();
    click("btnFullScreen");
    QCOMPARE(WId(m_live->player()->window()), surface()->winId());
    QVERIFY(m_form->IsPlaying());
    QTest::keyClick(child("frameVideoFrame"), Qt::Key_Escape);
    QCOMPARE(WId(m_live->player()->window()), surface()->winId());

    // The window system may give another window at any time.
    const int plays = m_live->count("RtspPlayer_Play");
    const int setups = m_live->count("RtspPlayer_SetupP2PliveStream");
    m_live->report();
    QCOMPARE(m_live->count("RtspPlayer_SetupP2PliveStream"), setups);
    const WId before = surface()->winId();
    surface()->setAttribute(Qt::WA_NativeWindow, false);
    surface()->setWindowFlags(Qt::Window);
    surface()->setWindowFlags(Qt::Widget);
    surface()->show();
    QVERIFY(surface()->winId() != before);
    m_live->report();
    QCOMPARE(WId(m_live->player()->window()), surface()->winId());
    QCOMPARE(m_live->count("RtspPlayer_SetupP2PliveStream"), setups + 1);
    QCOMPARE(m_live->count("RtspPlayer_Play"), plays + 1);
}

void TestPlayCameraForm::streamAndRecordingGoOnThroughTheFullScreen()
{
    play();
    click("btnRecord");
    m_live->player()->forgetCalls();
    for (int i = 0; i < 3; ++i) {
        QTest::mouseDClick(surface(), Qt::LeftButton);
        QVERIFY(child("frameVideoFrame")->isFullScreen());
        m_live->report();
        QTest::keyClick(child("frameVideoFrame"), Qt::Key_Escape);
        m_live->report();
    }
    QCOMPARE(m_live->calls({QStringLiteral("RtspPlayer_SetupP2PliveStream"),
                            QStringLiteral("RtspPlayer_Play"), QStringLiteral("RtspPlayer_Stop"),
                            QStringLiteral("RtspPlayer_BeginWriting"),
                            QStringLiteral("RtspPlayer_EndWriting")}),
             QStringList());
    QVERIFY(m_live->camera()->is_writing());
}

void TestPlayCameraForm::aFocusedPictureShowsIt()
{
    play();
    m_form->activateWindow();
    child("btnBack")->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(child("btnBack")->hasFocus(), deadline);
    const QImage without = child("framePanel")->grab().toImage();
    child("frameVideoFrame")->setFocus();
    QVERIFY(child("framePanel")->grab().toImage() != without);
    child("btnBack")->setFocus();
    QCOMPARE(child("framePanel")->grab().toImage(), without);
}

void TestPlayCameraForm::stoppingLeavesFullScreen()
{
    play();
    click("btnFullScreen");
    m_live->player()->forgetCalls();
    // Also where the window system gives the picture another window on its way back.
    surface()->setAttribute(Qt::WA_NativeWindow, false);
    surface()->setWindowFlags(Qt::Window);
    surface()->setWindowFlags(Qt::Widget);
    m_form->StopPlay();
    QVERIFY(!child("frameVideoFrame")->isWindow());
    QCOMPARE(m_live->calls({QStringLiteral("RtspPlayer_SetupP2PliveStream"),
                            QStringLiteral("RtspPlayer_Play"), QStringLiteral("RtspPlayer_Stop")}),
             QStringList{QStringLiteral("RtspPlayer_Stop")});
}

void TestPlayCameraForm::destructionInFullScreen()
{
    play();
    click("btnFullScreen");
    QPointer<QWidget> frame = child("frameVideoFrame");
    m_form.reset();
    QVERIFY(!frame);
    QVERIFY(!m_live->camera()->is_playing());
}

void TestPlayCameraForm::volumeIsGivenWhilePlaying()
{
    auto *slider = child<CVolumeSliderForm>("sliderVolume");
    m_form->SetCamera(m_live->camera());
    slider->setValue(30);
    QCOMPARE(m_live->count("RtspPlayer_SetVolume"), 0);
    play();
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 30);
    QTest::keyClick(slider->findChild<QSlider *>(), Qt::Key_End);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 200);
    QTest::keyClick(slider->findChild<QSlider *>(), Qt::Key_Home);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 0);
}

void TestPlayCameraForm::muteGivesVolumeZeroAndBack()
{
    play();
    auto *mute = child("sliderVolume")->findChild<QToolButton *>();
    QTest::mouseClick(mute, Qt::LeftButton);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 0);
    child<CVolumeSliderForm>("sliderVolume")->setValue(70);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 0);
    QTest::mouseClick(mute, Qt::LeftButton);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 70);
}

void TestPlayCameraForm::eachReportGivesTheVolumeAgain()
{
    play();
    const int before = m_live->count("RtspPlayer_SetVolume");
    m_live->reports(5);
    QCOMPARE(m_live->count("RtspPlayer_SetVolume"), before + 5);
}

void TestPlayCameraForm::snapshotPlaysItsSoundFirstAndWritesTheNamedFile()
{
    play();
    int writtenBefore = -1;
    m_live->desktop.heard = [&] { writtenBefore = m_live->count("RtspPlayer_Snapshot"); };
    click("btnSnapshot");
    QCOMPARE(writtenBefore, 0);
    QCOMPARE(m_live->desktop.sounds, QStringList{QCoreApplication::applicationDirPath() +
                                                 QStringLiteral("/sounds/snapshot.wav")});
    const QString file = m_live->folder() + QStringLiteral("/20240305_070809.jpg");
    QCOMPARE(m_live->lastText("RtspPlayer_Snapshot"), file);
    QVERIFY(QFile::exists(file));
}

void TestPlayCameraForm::snapshotWithoutAPlayingCameraOnlySounds()
{
    m_form->SetCamera(m_live->camera());
    click("btnSnapshot");
    QCOMPARE(m_live->desktop.sounds.size(), 1);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 0);
    QVERIFY(!QDir(m_live->folder()).exists());
}

void TestPlayCameraForm::snapshotMakesTheMissingFolder()
{
    CameraSettings::instance().setAlbumPath(CameraSettings::instance().albumPath() +
                                            QStringLiteral("/new/folder"));
    play();
    QVERIFY(!QDir(m_live->folder()).exists());
    click("btnSnapshot");
    QVERIFY(QFile::exists(m_live->folder() + QStringLiteral("/20240305_070809.jpg")));
}

void TestPlayCameraForm::recordTakesTheStillAndWritesToTheBase()
{
    play();
    m_live->player()->forgetCalls();
    click("btnRecord");
    QCOMPARE(m_live->calls({QStringLiteral("RtspPlayer_Snapshot"),
                            QStringLiteral("RtspPlayer_BeginWriting")}),
             (QStringList{QStringLiteral("RtspPlayer_Snapshot"),
                          QStringLiteral("RtspPlayer_BeginWriting")}));
    QCOMPARE(m_live->lastText("RtspPlayer_Snapshot"),
             m_live->folder() + QStringLiteral("/20240305_070809.mp4.jpeg"));
    QCOMPARE(m_live->lastText("RtspPlayer_BeginWriting"),
             m_live->folder() + QStringLiteral("/20240305_070809"));
    QCOMPARE(m_live->lastNumber("RtspPlayer_BeginWriting"), 104857600);
}

void TestPlayCameraForm::recordOffEndsWriting()
{
    play();
    click("btnRecord");
    QCOMPARE(m_live->count("RtspPlayer_EndWriting"), 0);
    click("btnRecord");
    QCOMPARE(m_live->count("RtspPlayer_EndWriting"), 1);
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
}

void TestPlayCameraForm::recordWhileTheSessionWritesAlreadyDoesNothing()
{
    play();
    m_live->change([](auto &script) { script.writing = 1; });
    click("btnRecord");
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 0);
    QCOMPARE(m_live->count("RtspPlayer_EndWriting"), 0);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 0);
}

void TestPlayCameraForm::aRecordingRequestedBeforeThePictureStartsWithIt()
{
    m_form->SetCamera(m_live->camera());
    click("btnRecord");
    m_form->StartPlay();
    m_live->connectCamera();
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 0);
    m_live->report();
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
}

void TestPlayCameraForm::recordingResumesAfterAReconnectInANewFile()
{
    play();
    click("btnRecord");
    m_live->change([](auto &script) {
        script.playing = 0;
        script.writing = 0;
    });
    m_live->report();
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
    QVERIFY(hasIcon("btnRecord", QStringLiteral(":/images/panelbtn/recordbtn_down.png")));
    m_live->now = QDateTime(QDate(2024, 3, 5), QTime(7, 8, 42));
    m_live->report();
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 2);
    QCOMPARE(m_live->lastText("RtspPlayer_BeginWriting"),
             m_live->folder() + QStringLiteral("/20240305_070842"));
    QCOMPARE(m_live->lastText("RtspPlayer_Snapshot"),
             m_live->folder() + QStringLiteral("/20240305_070842.mp4.jpeg"));
}

void TestPlayCameraForm::twoRecordingsInTheSameSecondHaveTheSameName()
{
    play();
    click("btnRecord");
    const QString first = m_live->lastText("RtspPlayer_BeginWriting");
    click("btnRecord");
    click("btnRecord");
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 2);
    QCOMPARE(m_live->lastText("RtspPlayer_BeginWriting"), first);
}

void TestPlayCameraForm::theRecordIndicatorFollows()
{
    QVERIFY(child("labelRecording")->styleSheet().isEmpty());
    click("btnRecord");
    QCOMPARE(child("labelRecording")->styleSheet(),
             QStringLiteral("border-image:url(:/images/panelbtn/recordbtn_down.png);"));
    QVERIFY(hasIcon("btnRecord", QStringLiteral(":/images/panelbtn/recordbtn_down.png")));
    click("btnRecord");
    QVERIFY(child("labelRecording")->styleSheet().isEmpty());
    QVERIFY(hasIcon("btnRecord", QStringLiteral(":/images/panelbtn/recordbtn_default.png")));
}

void TestPlayCameraForm::talkBackStartsAndStops()
{
    play();
    click("btnOutVolume");
    QCOMPARE(m_live->count("AudioUpload_Play"), 1);
    QVERIFY(hasIcon("btnOutVolume", QStringLiteral(":/images/panelbtn/outvolumebtn_down.png")));
    click("btnOutVolume");
    QCOMPARE(m_live->count("AudioUpload_Stop"), 1);
    QVERIFY(hasIcon("btnOutVolume", QStringLiteral(":/images/panelbtn/outvolumebtn_default.png")));
    m_live->reports(3);
    QCOMPARE(m_live->count("AudioUpload_Play"), 1);
}

void TestPlayCameraForm::talkBackIsRestartedWhenTheUploadHasEnded()
{
    play();
    click("btnOutVolume");
    m_live->report();
    QCOMPARE(m_live->count("AudioUpload_Play"), 1);
    m_live->change([](auto &script) { script.uploading = 0; });
    m_live->report();
    QCOMPARE(m_live->count("AudioUpload_Play"), 2);
}

void TestPlayCameraForm::talkBackThatCannotStartSaysWhy_data()
{
    QTest::addColumn<int>("result");
    QTest::addColumn<QString>("tip");
    QTest::newRow("no microphone")
        << int(CAMMGR_TALK_NO_MICROPHONE) << "Talking does not work: there is no microphone.";
    QTest::newRow("not taken") << int(CAMMGR_TALK_NOT_TAKEN)
                               << "Talking does not work: the camera takes no sound.";
    QTest::newRow("failed") << int(CAMMGR_TALK_FAILED)
                            << "Talking does not work: the connection failed.";
    QTest::newRow("unknown") << -1 << "Talk";
}

void TestPlayCameraForm::talkBackThatCannotStartSaysWhy()
{
    QFETCH(int, result);
    QFETCH(QString, tip);
    play();
    const QString usual = child("btnOutVolume")->toolTip();
    const QString expected = result == -1 ? usual : tip;
    m_live->change([result](auto &script) { script.results["AudioUpload_Play"] = result; });
    click("btnOutVolume");
    m_live->reports(2);
    QCOMPARE(child("btnOutVolume")->toolTip(), expected);
    QCOMPARE(m_live->count("AudioUpload_Play"), 3); // with each report
    QVERIFY(hasIcon("btnOutVolume", QStringLiteral(":/images/panelbtn/outvolumebtn_down.png")));
    m_live->change([](auto &script) {
        script.results.clear();
        script.uploading = 1;
    });
    m_live->report();
    QCOMPARE(child("btnOutVolume")->toolTip(), usual);
    m_live->change([result](auto &script) {
        script.results["AudioUpload_Play"] = result;
        script.uploading = 0;
    });
    m_live->report();
    QCOMPARE(child("btnOutVolume")->toolTip(), expected);
    click("btnOutVolume");
    QCOMPARE(child("btnOutVolume")->toolTip(), usual);
}

void TestPlayCameraForm::talkBackIsNotRestartedWhileDisconnected()
{
    play();
    click("btnOutVolume");
    m_live->change([](auto &script) { script.uploading = 0; });
    m_live->camera()->tick_alive();
    m_live->player()->probeFailed();
    QTRY_COMPARE_WITH_TIMEOUT(m_live->camera()->get_state(), int(CAMERA_STATE_DISCONNECTED),
                              deadline);
    m_live->reports(3);
    QCOMPARE(m_live->count("AudioUpload_Play"), 1);
    m_live->camera()->tick_alive();
    m_live->player()->probeOk();
    QTRY_COMPARE_WITH_TIMEOUT(m_live->count("AudioUpload_Play"), 2, deadline);
}

void TestPlayCameraForm::backAsksForTheCameraPage()
{
    play();
    click("btnBack");
    QCOMPARE(m_live->host.pages, QStringList{QStringLiteral("manager")});
    // Stopping is up to the window.
    QVERIFY(m_form->IsPlaying());
}

void TestPlayCameraForm::stopEndsEverythingAndForgetsTheCamera()
{
    play();
    click("btnRecord");
    click("btnOutVolume");
    m_live->player()->forgetCalls();
    m_form->StopPlay();
    QCOMPARE(m_live->calls({QStringLiteral("RtspPlayer_EndWriting"),
                            QStringLiteral("AudioUpload_Stop"), QStringLiteral("RtspPlayer_Stop")}),
             (QStringList{QStringLiteral("RtspPlayer_EndWriting"),
                          QStringLiteral("AudioUpload_Stop"), QStringLiteral("RtspPlayer_Stop")}));
    QVERIFY(!m_form->IsPlaying());
    QVERIFY(hasIcon("btnRecord", QStringLiteral(":/images/panelbtn/recordbtn_default.png")));
    QVERIFY(hasIcon("btnOutVolume", QStringLiteral(":/images/panelbtn/outvolumebtn_default.png")));
    QVERIFY(child("labelRecording")->styleSheet().isEmpty());

    // The session continues, the view has nothing to do with it any more.
    m_live->player()->forgetCalls();
    m_live->reports(2);
    QCOMPARE(m_live->count("RtspPlayer_Play"), 0);
    m_form->StopPlay();
    QCOMPARE(m_live->count("RtspPlayer_Stop"), 0);
    QCOMPARE(m_live->count("RtspPlayer_Stop_Connecting"), 0);
}

void TestPlayCameraForm::aReportThatIsUnderWayAtStopIsPassedOver()
{
    play();
    m_live->player()->forgetCalls();
    emit m_live->camera()->signalStateReport();
    m_form->StopPlay();
    QCoreApplication::sendPostedEvents();
    QCOMPARE(m_live->count("RtspPlayer_Play"), 0);
    QCOMPARE(m_live->count("RtspPlayer_SetVolume"), 0);
}

void TestPlayCameraForm::theSessionMayBeDestroyedWhileItIsShown()
{
    play();
    CCamera *camera = m_live->camera();
    camera->stop();
    camera->wait_stopped();
    CCameraList::instance().remove(camera);
    QVERIFY(!m_form->IsPlaying());
    for (const char *button : {"btnSnapshot", "btnRecord", "btnZoomIn", "btnOutVolume"})
        click(button);
    m_form->slotTimer();
    m_form->StopPlay();
}

void TestPlayCameraForm::aWriteThatFailsIsNotReported()
{
    play();
    m_live->change([](auto &script) {
        script.results["RtspPlayer_Snapshot"] = -1;
        script.results["RtspPlayer_BeginWriting"] = -1;
    });
    click("btnSnapshot");
    click("btnRecord");
    QVERIFY(!QApplication::activeModalWidget());
    QVERIFY(hasIcon("btnRecord", QStringLiteral(":/images/panelbtn/recordbtn_down.png")));
    // It is requested again with the next start of the stream only.
    m_live->reports(3);
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
}

void TestPlayCameraForm::aNameWithMarkupIsShownAsItIs()
{
    m_live->addCameras({QStringLiteral("<b>&amp;")});
    m_form->SetCamera(m_live->camera(1));
    QCOMPARE(status(), QStringLiteral("Camera <b>&amp; is connecting..."));
    QCOMPARE(shownByToolTip(child("labelStatus")->toolTip()), status());
    QCOMPARE(child<QLabel>("labelStatus")->textFormat(), Qt::PlainText);
}

void TestPlayCameraForm::thePageFitsTheSmallestWindow()
{
    // The window may be dragged to 400 pixels, borders and all.
    QVERIFY2(m_form->minimumSizeHint().width() <= 380,
             qPrintable(QString::number(m_form->minimumSizeHint().width())));
    QVERIFY(m_form->minimumSizeHint().height() <= 200);
    play();
    m_form->resize(380, 200);
    QTRY_COMPARE_WITH_TIMEOUT(m_form->size(), QSize(380, 200), deadline);
    for (const auto *button : m_form->findChildren<QToolButton *>())
        QVERIFY(button->visibleRegion().boundingRect() == button->rect());
}

void TestPlayCameraForm::thePanelDoesNotMoveWithTheFocus()
{
    m_form->setStyleSheet(zelvaro::applicationStyleSheet());
    m_form->activateWindow();
    QTRY_COMPARE_WITH_TIMEOUT(child("frameButtonsCenter")->width(), 464, deadline);
    for (const char *name : {"btnSnapshot", "btnRecord", "btnBack", "btnMute"}) {
        child(name)->setFocus();
        QTRY_VERIFY_WITH_TIMEOUT(child(name)->hasFocus(), deadline);
        QCoreApplication::processEvents();
        QCOMPARE(child("frameButtonsCenter")->width(), 464);
        QCOMPARE(child("btnSnapshot")->size(), QSize(40, 40));
    }
}

void TestPlayCameraForm::theKeyboardReachesEveryControl()
{
    QSet<QString> reached;
    m_form->activateWindow();
    child("frameVideoFrame")->setFocus();
    QTRY_VERIFY_WITH_TIMEOUT(child("frameVideoFrame")->hasFocus(), deadline);
    for (int i = 0; i < 20; ++i) {
        if (QWidget *focus = QApplication::focusWidget())
            reached.insert(focus->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    for (const char *name :
         {"frameVideoFrame", "btnSnapshot", "btnRecord", "btnZoomIn", "btnZoomOut", "btnFullScreen",
          "slider", "btnMute", "btnOutVolume", "btnBack"})
        QVERIFY2(reached.contains(QString::fromLatin1(name)), name);
    for (const auto *button : m_form->findChildren<QToolButton *>()) {
        QVERIFY2(!button->toolTip().isEmpty(), qPrintable(button->objectName()));
        QVERIFY2(!button->accessibleName().isEmpty(), qPrintable(button->objectName()));
    }
    child("btnBack")->setFocus();
    QTest::keyClick(child("btnBack"), Qt::Key_Space);
    QCOMPARE(m_live->host.pages, QStringList{QStringLiteral("manager")});
}

QTEST_MAIN(TestPlayCameraForm)
#include "tst_play_camera_form.moc"
