#include "ui/live/multi_live_item_form.h"

#include "resources/resources.h"
#include "tests/support/declared.h"
#include "tests/ui/live/live_fixture.h"
#include "ui/live/video_frame.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {
constexpr int deadline = LiveFixture::deadline;
}

class TestMultiLiveItemForm : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void init();
    void cleanup();

    void slotsStandInOrder();
    void setCameraShowsItsNameConnecting();
    void theStreamIsAlwaysTheSubStream();
    void statusLineHasNoScale_data();
    void statusLineHasNoScale();
    void thePictureIsSizedAsInTheSingleView();
    void aResizedTileLaysOutAgain();
    void reportsFollowTheSameSteps();
    void volumeIsGivenAtOnceAndWithEachReport();
    void recordingMarksAndWrites();
    void recordingResumesAfterAReconnectInANewFile();
    void stopLeavesTheRecordingToTheStream();
    void photoOnlyWhilePlaying();
    void aPressAnywhereSelects();
    void spaceAndEnterSelect();
    void fullScreenIsTheTilesOwn();
    void theSelectedFrame();

private:
    template <typename T = QWidget>
    T *child(const char *name) const
    {
        return m_tile->findChild<T *>(QString::fromLatin1(name));
    }
    QString status() const { return child<QLabel>("labelStatus")->text(); }
    QWidget *surface() const { return child<CVideoFrame>("frameVideoFrame")->renderSurface(); }
    void play(int width = 160, int height = 120);

    std::unique_ptr<LiveFixture> m_live;
    std::unique_ptr<QWidget> m_page;
    CMultiLiveItemForm *m_tile = nullptr;
};

void TestMultiLiveItemForm::init()
{
    m_live = std::make_unique<LiveFixture>();
    m_live->addCameras({QStringLiteral("H")});
    m_page = std::make_unique<QWidget>();
    m_page->resize(600, 500);
    m_tile = new CMultiLiveItemForm(m_live->clock(), m_page.get());
    m_tile->setGeometry(20, 20, 446, 320);
    m_page->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
}

void TestMultiLiveItemForm::cleanup()
{
    m_tile->stop();
    m_page.reset();
    m_live.reset();
}

void TestMultiLiveItemForm::play(int width, int height)
{
    m_live->change([=](auto &script) {
        script.width = width;
        script.height = height;
    });
    m_tile->setCamera(m_live->camera());
    m_tile->start();
    m_live->connectCamera();
    m_live->report();
}

void TestMultiLiveItemForm::slotsStandInOrder()
{
    const QMetaObject &meta = CMultiLiveItemForm::staticMetaObject;
    QCOMPARE(declared(meta, QMetaMethod::Signal),
             QStringList{QStringLiteral("selectCamera(CMultiLiveItemForm*)")});
    QCOMPARE(
        declared(meta, QMetaMethod::Slot),
        (QStringList{QStringLiteral("slotCameraStatusChanged()"), QStringLiteral("slotTimer()"),
                     QStringLiteral("slotVideoDoubleClicked()")}));
}

void TestMultiLiveItemForm::setCameraShowsItsNameConnecting()
{
    m_tile->setCamera(m_live->camera());
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
    QCOMPARE(m_tile->camera(), m_live->camera());
}

void TestMultiLiveItemForm::theStreamIsAlwaysTheSubStream()
{
    m_live->change([](auto &script) { script.mode = 0; });
    m_tile->setCamera(m_live->camera());
    m_tile->start();
    QCOMPARE(QString::fromStdString(m_live->player()->path()), QStringLiteral("/live/1/h264.sdp"));
    QCOMPARE(WId(m_live->player()->window()), surface()->winId());
    QCOMPARE(m_live->count("RtspPlayer_GetMode"), 0);
}

void TestMultiLiveItemForm::statusLineHasNoScale_data()
{
    QTest::addColumn<int>("bitRate");
    QTest::addColumn<QString>("text");
    QTest::newRow("999") << 999 << "160x120  15FPS 999bps";
    QTest::newRow("1000") << 1000 << "160x120  15FPS 1.00Kbps";
    QTest::newRow("999999") << 999999 << "160x120  15FPS 999.99Kbps";
    QTest::newRow("1000000") << 1000000 << "160x120  15FPS 1.00Mbps";
}

void TestMultiLiveItemForm::statusLineHasNoScale()
{
    QFETCH(int, bitRate);
    QFETCH(QString, text);
    play();
    m_live->change([bitRate](auto &script) { script.bitRate = bitRate; });
    m_live->report();
    QCOMPARE(status(), text);
}

void TestMultiLiveItemForm::thePictureIsSizedAsInTheSingleView()
{
    play();
    const QSize area = child("frameVideoArea")->size();
    QCOMPARE(child("frameVideoClient")->geometry(),
             QRect(15 + (area.width() - 30 - 160) / 2 - 6, 15 + (area.height() - 48 - 120) / 2 - 5,
                   160 + 13, 120 + 31));
    QCOMPARE(child("frameVideoFrame")->size(), QSize(160, 120));
}

void TestMultiLiveItemForm::aResizedTileLaysOutAgain()
{
    play(640, 360);
    const auto fittedWidth = [this] { return child("frameVideoArea")->width() - 30; };
    QCOMPARE(child("frameVideoFrame")->width(), fittedWidth());
    m_tile->resize(300, 250);
    QTRY_COMPARE_WITH_TIMEOUT(child("frameVideoFrame")->width(), fittedWidth(), deadline);
    m_tile->resize(550, 450);
    QTRY_COMPARE_WITH_TIMEOUT(child("frameVideoFrame")->width(), fittedWidth(), deadline);
}

void TestMultiLiveItemForm::reportsFollowTheSameSteps()
{
    play();
    const QString thumb = m_live->folder() + QStringLiteral("/thumb.jpeg");
    m_live->reports(3);
    QVERIFY(!QFile::exists(thumb));
    m_live->report();
    QVERIFY(QFile::exists(thumb));
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 1);
    m_live->reports(61);
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 2);

    m_live->setPlaying(false);
    const int plays = m_live->count("RtspPlayer_Play");
    m_live->report();
    QCOMPARE(status(), QStringLiteral("Camera H is connecting..."));
    QCOMPARE(m_live->count("RtspPlayer_Play"), plays + 1);
    QCOMPARE(m_live->count("AudioUpload_Play"), 0);
}

void TestMultiLiveItemForm::volumeIsGivenAtOnceAndWithEachReport()
{
    m_tile->setCamera(m_live->camera());
    m_tile->setVolume(40);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 40);
    play();
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 40);
    const int before = m_live->count("RtspPlayer_SetVolume");
    m_live->reports(2);
    QCOMPARE(m_live->count("RtspPlayer_SetVolume"), before + 2);
    QCOMPARE(m_live->lastNumber("RtspPlayer_SetVolume"), 40);
}

void TestMultiLiveItemForm::recordingMarksAndWrites()
{
    play();
    QVERIFY(child("labelRecording")->styleSheet().isEmpty());
    m_tile->setRecording(true);
    QCOMPARE(child("labelRecording")->styleSheet(),
             QStringLiteral("border-image:url(:/images/panelbtn/recordbtn_down.png);"));
    QCOMPARE(m_live->lastText("RtspPlayer_Snapshot"),
             m_live->folder() + QStringLiteral("/20240305_070809.mp4.jpeg"));
    QCOMPARE(m_live->lastText("RtspPlayer_BeginWriting"),
             m_live->folder() + QStringLiteral("/20240305_070809"));
    QCOMPARE(m_live->lastNumber("RtspPlayer_BeginWriting"), 104857600);
    m_tile->setRecording(false);
    QVERIFY(child("labelRecording")->styleSheet().isEmpty());
    QCOMPARE(m_live->count("RtspPlayer_EndWriting"), 1);
}

void TestMultiLiveItemForm::recordingResumesAfterAReconnectInANewFile()
{
    play();
    m_tile->setRecording(true);
    m_live->change([](auto &script) {
        script.playing = 0;
        script.writing = 0;
    });
    m_live->now = m_live->now.addSecs(30);
    m_live->reports(2);
    QCOMPARE(m_live->count("RtspPlayer_BeginWriting"), 2);
    QCOMPARE(m_live->lastText("RtspPlayer_BeginWriting"),
             m_live->folder() + QStringLiteral("/20240305_070839"));
}

void TestMultiLiveItemForm::stopLeavesTheRecordingToTheStream()
{
    play();
    m_tile->setRecording(true);
    m_live->player()->forgetCalls();
    m_tile->stop();
    QCOMPARE(m_live->count("RtspPlayer_EndWriting"), 0);
    QCOMPARE(m_live->count("RtspPlayer_Stop"), 1);
    QVERIFY(!m_tile->camera());
    m_live->reports(2);
    QCOMPARE(m_live->count("RtspPlayer_Play"), 0);
    m_tile->stop();
    QCOMPARE(m_live->count("RtspPlayer_Stop"), 1);
}

void TestMultiLiveItemForm::photoOnlyWhilePlaying()
{
    m_tile->setCamera(m_live->camera());
    m_tile->takePhoto();
    QCOMPARE(m_live->count("RtspPlayer_Snapshot"), 0);
    play();
    m_tile->takePhoto();
    QCOMPARE(m_live->lastText("RtspPlayer_Snapshot"),
             m_live->folder() + QStringLiteral("/20240305_070809.jpg"));
}

void TestMultiLiveItemForm::aPressAnywhereSelects()
{
    play();
    QSignalSpy selected(m_tile, &CMultiLiveItemForm::selectCamera);
    QTest::mousePress(m_tile, Qt::LeftButton, {}, QPoint(2, 2));
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.at(0).at(0).value<CMultiLiveItemForm *>(), m_tile);
    QTest::mousePress(child("labelStatus"), Qt::LeftButton);
    QCOMPARE(selected.count(), 2);
    QTest::mousePress(surface(), Qt::LeftButton);
    QCOMPARE(selected.count(), 3);
    QTest::mousePress(surface(), Qt::RightButton);
    QCOMPARE(selected.count(), 4);
}

void TestMultiLiveItemForm::spaceAndEnterSelect()
{
    QSignalSpy selected(m_tile, &CMultiLiveItemForm::selectCamera);
    QTest::keyClick(child("frameVideoFrame"), Qt::Key_Space);
    QTest::keyClick(child("frameVideoFrame"), Qt::Key_Return);
    QCOMPARE(selected.count(), 2);
    QTest::keyClick(child("frameVideoFrame"), Qt::Key_A);
    QCOMPARE(selected.count(), 2);
}

void TestMultiLiveItemForm::fullScreenIsTheTilesOwn()
{
    play();
    QWidget *frame = child("frameVideoFrame");
    QTest::mouseDClick(surface(), Qt::LeftButton);
    QVERIFY(frame->isFullScreen());
    QTRY_VERIFY_WITH_TIMEOUT(frame->hasFocus(), deadline);
    QVERIFY(m_live->host.pages.isEmpty());
    QCOMPARE(m_live->count("RtspPlayer_SetupP2PliveStream"), 1);
    QTest::keyClick(frame, Qt::Key_Escape);
    QVERIFY(!frame->isWindow());
    QTRY_COMPARE_WITH_TIMEOUT(frame->geometry(), QRect(6, 5, 160, 120), deadline);
}

void TestMultiLiveItemForm::theSelectedFrame()
{
    const auto shows = [this](const char *image) {
        return child("frameCameraItemBk")->styleSheet().contains(QLatin1String(image));
    };
    QVERIFY(shows(":/images/multilive/multiliveitemframe_default.png"));
    m_tile->setSelected(true);
    QVERIFY(shows(":/images/multilive/multiliveitemframe_hover.png"));
    m_tile->setSelected(false);
    QVERIFY(shows(":/images/multilive/multiliveitemframe_default.png"));
    QVERIFY(QFile::exists(QStringLiteral(":/images/multilive/multiliveitemframe_default.png")));
    QVERIFY(QFile::exists(QStringLiteral(":/images/multilive/multiliveitemframe_hover.png")));
}

QTEST_MAIN(TestMultiLiveItemForm)
#include "tst_multi_live_item_form.moc"
