#include "resources/resources.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/common/volume_slider_form.h"
#include "ui/live/multi_live_form.h"
#include "ui/live/multi_live_frame.h"
#include "ui/live/multi_live_item_form.h"
#include "ui/live/play_camera_form.h"
#include "ui/live/video_frame.h"

#include <QLabel>
#include <QMouseEvent>
#include <QSlider>
#include <QToolButton>

namespace {

constexpr int deadline = LiveFixture::deadline;

} // namespace

/// What lies over a live picture and beside its lamp.
class TestLiveNotice : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void aLivePictureHasNothingOverIt();
    void aPictureOlderThanFiveSecondsIsDimmedAndSaysSo();
    void withoutReportsToo();
    void aNewPictureTakesTheNoticeAway();
    void aStreamThatEndsLeavesAnOldPicture();
    void aLibraryThatCountsNoFramesIsBelieved();
    void theAgeThatTheLibraryTellsCounts();
    void aPictureOfAnotherDayTellsTheDay();
    void anotherStreamBeginsAnew();
    void theOverlayHasTheShapeOfWhatItDraws();
    void everySecondLineOfAnOldPictureIsBlack();
    void theFullScreenTellsTheNameForAWhile();
    void theFullScreenTellsTheTimeOfAnOldPicture();
    void theFullScreenHasTheRecordMark();
    void theFullScreenTellsThatThereIsNoPictureYet();
    void thePageHasNoneOfThem();
    void aRecordingThatIsNotWrittenHasAWord();
    void aRecordingThatWaitsForTheStreamHasAWord();
    void aTileSaysSoToo();
    void aCameraWithoutSoundHasAPaleVolume();
    void aGridThatIsNotHeardHasAPaleVolume();

private:
    void play();
    /// So many seconds pass without a picture.
    void freeze(int seconds, bool playing = true);
    void fullScreen();
    CVideoFrame *picture() const
    {
        return m_page->findChild<CVideoFrame *>(QStringLiteral("frameVideoFrame"));
    }
    const zelvaro::OverlayContent &over() const { return picture()->overlay(); }
    QWidget *overlay() const { return picture()->renderSurface()->findChild<QWidget *>(); }
    QLabel *word() const
    {
        return m_page->findChild<QLabel *>(QStringLiteral("labelRecordingNote"));
    }
    void clickRecord()
    {
        QTest::mouseClick(m_page->findChild<QToolButton *>(QStringLiteral("btnRecord")),
                          Qt::LeftButton);
    }

    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<CPlayCameraForm> m_page;
};

void TestLiveNotice::init()
{
    m_live = std::make_unique<LiveFixture>();
    m_live->addCameras({QStringLiteral("H")});
    m_page = std::make_unique<CPlayCameraForm>(nullptr, m_live->clock());
    m_page->resize(700, 520);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
}

void TestLiveNotice::cleanup()
{
    m_page->StopPlay();
    m_page.reset();
    m_live.reset();
}

void TestLiveNotice::play()
{
    m_page->SetCamera(m_live->camera());
    m_page->StartPlay();
    m_live->connectCamera();
    m_live->reports(2);
}

void TestLiveNotice::freeze(int seconds, bool playing)
{
    m_live->change([playing](auto &script) {
        script.frameRate = 0;
        script.playing = playing;
        script.playPlays = false;
    });
    m_live->now = m_live->now.addSecs(seconds);
    m_live->report();
}

void TestLiveNotice::fullScreen()
{
    QTest::mouseClick(m_page->findChild<QToolButton *>(QStringLiteral("btnFullScreen")),
                      Qt::LeftButton);
    QVERIFY(picture()->isWindow());
}

void TestLiveNotice::aLivePictureHasNothingOverIt()
{
    play();
    QVERIFY(over().isEmpty());
    freeze(5);
    QVERIFY(over().isEmpty());
    QVERIFY(!overlay()->mask().intersects(overlay()->rect()));
}

void TestLiveNotice::aPictureOlderThanFiveSecondsIsDimmedAndSaysSo()
{
    play();
    freeze(6);
    QVERIFY(over().dimmed);
    QCOMPARE(over().notice, QStringLiteral("No picture since 07:08:09"));
    QCOMPARE(overlay()->accessibleDescription(), over().notice);
}

void TestLiveNotice::withoutReportsToo()
{
    play();
    m_live->change([](auto &script) { script.frameRate = 0; });
    m_live->now = m_live->now.addSecs(6);
    QTRY_VERIFY_WITH_TIMEOUT(over().dimmed, deadline);
}

void TestLiveNotice::aNewPictureTakesTheNoticeAway()
{
    play();
    freeze(6);
    m_live->change([](auto &script) { script.frameRate = 1; });
    m_live->report();
    QVERIFY(over().isEmpty());
}

void TestLiveNotice::aStreamThatEndsLeavesAnOldPicture()
{
    play();
    freeze(4, false);
    QVERIFY(over().isEmpty());
    freeze(60, false);
    QCOMPARE(over().notice, QStringLiteral("No picture since 07:08:09"));
}

void TestLiveNotice::aLibraryThatCountsNoFramesIsBelieved()
{
    m_live->change([](auto &script) { script.frameRate = 0; });
    play();
    freeze(60);
    QVERIFY(over().isEmpty());
    freeze(6, false);
    QVERIFY(over().dimmed);
}

void TestLiveNotice::theAgeThatTheLibraryTellsCounts()
{
    play();
    RtspPlayerFigures figures = {};
    figures.picture_age = 7000;
    m_live->change([&figures](auto &script) { script.figures = figures; });
    m_live->report();
    QCOMPARE(over().notice, QStringLiteral("No picture since 07:08:02"));
    figures.picture_age = 40;
    m_live->change([&figures](auto &script) { script.figures = figures; });
    m_live->report();
    QVERIFY(over().isEmpty());
}

void TestLiveNotice::aPictureOfAnotherDayTellsTheDay()
{
    play();
    freeze(3600 * 24);
    QVERIFY(over().notice.endsWith(QStringLiteral("07:08:09")));
    QVERIFY(over().notice.contains(QLocale().toString(QDate(2024, 3, 5), QLocale::ShortFormat)));
}

void TestLiveNotice::anotherStreamBeginsAnew()
{
    play();
    freeze(6);
    m_page->StopPlay();
    QVERIFY(over().isEmpty());
    m_page->SetCamera(m_live->camera());
    m_page->StartPlay();
    m_live->report();
    QVERIFY(over().isEmpty());
}

void TestLiveNotice::theOverlayHasTheShapeOfWhatItDraws()
{
    play();
    freeze(6);
    const QRegion shape = overlay()->mask();
    QVERIFY(shape.contains(overlay()->rect().center()));
    QVERIFY(shape.contains(QPoint(0, 0)));
    QVERIFY(!shape.contains(QPoint(0, 1)));
    const QSize size = overlay()->size();
    m_page->resize(500, 400);
    QVERIFY(overlay()->size() != size);
    QVERIFY(overlay()->rect().contains(overlay()->mask().boundingRect()));
}

void TestLiveNotice::everySecondLineOfAnOldPictureIsBlack()
{
    play();
    freeze(6);
    QPalette white = picture()->renderSurface()->palette();
    picture()->renderSurface()->setStyleSheet(QStringLiteral("background-color:white;"));
    const QImage seen = picture()->grab().toImage();
    QCOMPARE(seen.pixelColor(1, 10), QColor(Qt::black));
    QCOMPARE(seen.pixelColor(1, 11), QColor(Qt::white));
}

void TestLiveNotice::theFullScreenTellsTheNameForAWhile()
{
    play();
    fullScreen();
    QCOMPARE(over().name, QStringLiteral("Camera H"));
    QTRY_VERIFY_WITH_TIMEOUT(over().name.isEmpty(), deadline);
    QMouseEvent move(QEvent::MouseMove, QPointF(9, 9), QPointF(9, 9), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(overlay(), &move);
    QCOMPARE(over().name, QStringLiteral("Camera H"));
}

void TestLiveNotice::theFullScreenTellsTheTimeOfAnOldPicture()
{
    play();
    fullScreen();
    freeze(2);
    QCOMPARE(over().clock, QString());
    freeze(1);
    QCOMPARE(over().clock, QStringLiteral("07:08:09"));
    QVERIFY(!over().dimmed);
    freeze(3);
    QVERIFY(over().dimmed);
    QCOMPARE(over().notice, QStringLiteral("No picture since 07:08:09"));
}

void TestLiveNotice::theFullScreenHasTheRecordMark()
{
    play();
    clickRecord();
    fullScreen();
    QVERIFY(over().recording);
    m_live->change([](auto &script) { script.writing = CAMMGR_WRITING_WAITS; });
    m_live->report();
    QVERIFY(!over().recording);
    QCOMPARE(over().clock, QStringLiteral("not recorded"));
}

void TestLiveNotice::theFullScreenTellsThatThereIsNoPictureYet()
{
    m_live->change([](auto &script) { script.playPlays = false; });
    m_page->SetCamera(m_live->camera());
    m_page->StartPlay();
    fullScreen();
    QCOMPARE(over().notice, QStringLiteral("Camera H: no picture yet"));
}

void TestLiveNotice::thePageHasNoneOfThem()
{
    play();
    clickRecord();
    fullScreen();
    QTest::mouseDClick(picture(), Qt::LeftButton);
    QVERIFY(!picture()->isWindow());
    QVERIFY(over().isEmpty());
}

void TestLiveNotice::aRecordingThatIsNotWrittenHasAWord()
{
    play();
    QVERIFY(!word()->isVisible());
    clickRecord();
    QVERIFY(!word()->isVisible());
    m_live->change([](auto &script) { script.writing = CAMMGR_WRITING_WAITS; });
    m_live->report();
    QVERIFY(word()->isVisible());
    QCOMPARE(word()->text(), QStringLiteral("not recorded"));
    m_live->change([](auto &script) { script.writing = CAMMGR_WRITING; });
    m_live->report();
    QVERIFY(!word()->isVisible());
    m_live->change([](auto &script) { script.writing = CAMMGR_WRITING_WAITS; });
    m_live->report();
    clickRecord();
    QVERIFY(!word()->isVisible());
}

void TestLiveNotice::aRecordingThatWaitsForTheStreamHasAWord()
{
    m_live->change([](auto &script) { script.playPlays = false; });
    m_page->SetCamera(m_live->camera());
    m_page->StartPlay();
    clickRecord();
    QVERIFY(word()->isVisible());
    m_live->change([](auto &script) { script.playPlays = true; });
    m_live->connectCamera();
    m_live->reports(2);
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 1);
    QVERIFY(!word()->isVisible());
}

void TestLiveNotice::aTileSaysSoToo()
{
    CMultiLiveItemForm tile(m_live->clock(), m_page.get());
    tile.resize(300, 240);
    tile.show();
    tile.setCamera(m_live->camera());
    tile.start();
    m_live->connectCamera();
    m_live->reports(2);
    freeze(6);
    QVERIFY(static_cast<CVideoFrame *>(tile.picture())->overlay().dimmed);
    tile.stop();
}

void TestLiveNotice::aCameraWithoutSoundHasAPaleVolume()
{
    const auto *slider = m_page->findChild<QSlider *>(QStringLiteral("slider"));
    play();
    QVERIFY(!slider->property("unheard").toBool());
    QCOMPARE(slider->toolTip(), QStringLiteral("Volume"));
    m_live->change([](auto &script) { script.hasAudio = 0; });
    m_live->report();
    QVERIFY(slider->property("unheard").toBool());
    QCOMPARE(slider->toolTip(), QStringLiteral("This camera sends no sound."));
    QVERIFY(slider->isEnabled());
}

void TestLiveNotice::aGridThatIsNotHeardHasAPaleVolume()
{
    CMultiLiveForm grid(nullptr, m_live->clock());
    grid.resize(700, 520);
    grid.show();
    grid.StartPlay();
    m_live->connectCamera();
    m_live->reports(2);
    auto *frame = grid.findChild<CMultiLiveFrame *>();
    const auto *slider = grid.findChild<QSlider *>(QStringLiteral("slider"));
    QVERIFY(slider->property("unheard").toBool());
    QTest::mouseClick(frame->tiles().first(), Qt::LeftButton);
    QVERIFY(!slider->property("unheard").toBool());
    m_live->change([](auto &script) { script.hasAudio = 0; });
    m_live->report();
    QCOMPARE(slider->toolTip(), QStringLiteral("This camera sends no sound."));
    QTest::mouseDClick(frame, Qt::LeftButton, {}, QPoint(1, 1));
    QCOMPARE(slider->toolTip(),
             QStringLiteral("Nothing is heard: click a picture to hear its camera."));
    grid.StopPlay();
}

QTEST_MAIN(TestLiveNotice)
#include "tst_live_notice.moc"
