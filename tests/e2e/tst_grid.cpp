#include "app/main_form.h"
#include "camera/camera.h"
#include "tests/e2e/clip_check.h"
#include "tests/e2e/program_run.h"
#include "tests/e2e/sound_tap.h"
#include "tests/support/modal_script.h"
#include "ui/common/message_box.h"
#include "ui/live/multi_live_form.h"
#include "ui/live/multi_live_frame.h"
#include "ui/live/multi_live_item_form.h"
#include "ui/live/select_camera_form.h"
#include "ui/live/select_camera_item_form.h"
#include "ui/live/select_camera_recording_form.h"

#include <QElapsedTimer>
#include <QHash>
#include <QLabel>
#include <QScreen>
#include <QSignalSpy>
#include <QStackedWidget>
#include <QTest>
#include <QToolButton>

#include <X11/keysym.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>

using zelvaro::test::CamsimProcess;

namespace {

constexpr int patience = 60'000; // milliseconds for anything that needs all cameras
constexpr int cameraCount = 16;
constexpr int frameRate = 10;
constexpr int recorded = 10'000; // milliseconds

constexpr double longestGap = 4.0 / frameRate; // seconds from a frame to the next

const QString stamp = QStringLiteral("\\d{8}_\\d{6}");
const QSize pictureSize(320, 180);

double seconds(qint64 milliseconds)
{
    return static_cast<double>(milliseconds) / 1000;
}

/// Places at which a picture does not follow the one that it follows otherwise. The cameras play
/// the same two seconds again and again, so this shows each missing frame, and each time that a
/// camera was requested to send a key frame and began its two seconds again.
QStringList breaksInOrder(const QStringList &pictures)
{
    QHash<QString, QHash<QString, int>> followers;
    for (int i = 1; i < pictures.size(); ++i)
        ++followers[pictures.at(i - 1)][pictures.at(i)];
    QStringList breaks;
    for (int i = 1; i < pictures.size(); ++i) {
        const QHash<QString, int> &counts = followers[pictures.at(i - 1)];
        const bool isUsual = std::all_of(counts.begin(), counts.end(), [&](int count) {
            return count <= counts.value(pictures.at(i));
        });
        if (!isUsual)
            breaks << QString("%1 to %2").arg(i).arg(pictures.indexOf(pictures.at(i)));
    }
    return breaks;
}

} // namespace

/// Sixteen cameras side by side, as a person uses them: chosen, watched, heard, photographed and
/// recorded; what comes out is judged by other programs.
class TestGrid : public QObject
{
    Q_OBJECT

private slots:
    void camerasAreChosenWatchedHeardAndRecorded();

private:
    void choose();
    void watch();
    void hear();
    void takePhotos();
    void beginRecording();
    void fullScreenOfATile();
    void changeOfViewAsksFirst();
    void judgeClips();
    void quit();

    CMultiLiveForm *page() const { return m_window->findChild<CMultiLiveForm *>(); }
    CMultiLiveFrame *grid() const { return m_window->findChild<CMultiLiveFrame *>(); }
    CMultiLiveItemForm *tile(int index) const { return grid()->tiles().at(index); }
    QWidget *picture(int index) const
    {
        return tile(index)->findChild<QWidget *>("frameVideoFrame");
    }
    bool isSelected(int index) const
    {
        return tile(index)
            ->findChild<QWidget *>("frameCameraItemBk")
            ->styleSheet()
            .contains("multiliveitemframe_hover");
    }
    bool allWriting(bool writing) const
    {
        return std::all_of(
            m_recorded.begin(), m_recorded.end(),
            [this, writing](int index) {
                return bool(tile(index)->camera()->is_writing()) == writing;
            });
    }
    void click(const QWidget *parent, const char *name)
    {
        m_input->click(parent->findChild<QWidget *>(QLatin1String(name)));
    }
    void tick(QWidget *dialog, const QList<int> &wanted);
    /// Every picture on the screen moves: no stream is frozen.
    void expectAllAlive();

    const QList<int> m_recorded{0, 5, 10, 15};
    ProgramRun *m_run = nullptr;
    RealInput *m_input = nullptr;
    CamsimProcess *m_cameras = nullptr;
    CMainForm *m_window = nullptr;
    QList<long> m_keyFramesBefore; ///< key frames requested of each camera
    QElapsedTimer m_recording;
    qint64 m_surelyRecording = 0; ///< ms after which all wrote, from the click that began it
    double m_atLeast = 0;         ///< seconds that were recorded
    double m_atMost = 0;
};

void TestGrid::camerasAreChosenWatchedHeardAndRecorded()
{
    RealInput input;
    if (!input.isValid())
        QSKIP("The display has no XTEST extension.");
    soundtap::listen();
    CamsimProcess cameras({"--count", QByteArray::number(cameraCount).toStdString(), "--user",
                           "admin", "--password", "secret", "--canned", "--sub-size", "320x180",
                           "--sub-fps", QByteArray::number(frameRate).toStdString(),
                           "--sub-bitrate", "200000", "--main-size", "320x180", "--key-interval",
                           "0.5"});
    ProgramRun run;
    run.registerCameras(cameras, false);
    m_run = &run;
    m_input = &input;
    m_cameras = &cameras;
    bool finished = false;
    const int code = run.run([&](CMainForm &window) {
        m_window = &window;
        for (const auto step :
             {&TestGrid::choose, &TestGrid::watch, &TestGrid::hear, &TestGrid::takePhotos,
              &TestGrid::beginRecording, &TestGrid::fullScreenOfATile,
              &TestGrid::changeOfViewAsksFirst, &TestGrid::judgeClips, &TestGrid::quit}) {
            (this->*step)();
            if (QTest::currentTestFailed())
                return;
        }
        finished = true;
    });
    QVERIFY(finished);
    QCOMPARE(code, 0);
}

/// The first tile with the mouse, the others with the keyboard, which also scrolls to them.
void TestGrid::tick(QWidget *dialog, const QList<int> &wanted)
{
    const auto tiles = dialog->findChild<zelvaro::SelectionFrame *>()->tiles();
    QCOMPARE(tiles.size(), cameraCount);
    m_input->click(tiles.first());
    for (int i = 0; i < tiles.size(); ++i) {
        QTRY_VERIFY_WITH_TIMEOUT(tiles.at(i)->hasFocus(), patience);
        if (i > 0 && wanted.contains(i))
            m_input->key(XK_space);
        QTRY_COMPARE_WITH_TIMEOUT(tiles.at(i)->isChecked(), wanted.contains(i), patience);
        m_input->key(XK_Tab);
    }
}

void TestGrid::choose()
{
    QVERIFY(QTest::qWaitForWindowActive(m_window, patience));
    click(m_window, "btnMax");
    QTRY_COMPARE_WITH_TIMEOUT(m_window->size(), m_window->screen()->availableSize(), patience);
    QTRY_VERIFY_WITH_TIMEOUT(m_input->isSettled(m_window), patience);
    click(m_window, "btnMultiLive");
    QTRY_COMPARE_WITH_TIMEOUT(
        m_window->findChild<QStackedWidget *>("stackedWidget")->currentIndex(),
        int(CMainForm::PageMultiLive), patience);
    QCOMPARE(grid()->tiles().size(), 0);

    QList<int> all;
    for (int i = 0; i < cameraCount; ++i)
        all << i;
    ModalScript script([&](CSelectCameraForm *dialog) {
        tick(dialog, all);
        click(dialog, "btnOK");
    });
    click(page(), "btnSelect");
    QTRY_VERIFY_WITH_TIMEOUT(script.done(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(grid()->tiles().size(), cameraCount, patience);
    QCOMPARE(m_run->settings().count("MULTILIVE=1"), cameraCount);
}

void TestGrid::watch()
{
    QCOMPARE(grid()->shape().rows, 4);
    QCOMPARE(grid()->shape().columns, 4);
    QVERIFY(qAbs(grid()->shape().width * 3 - grid()->shape().height * 4) < 4);
    for (int i = 0; i < cameraCount; ++i) {
        QCOMPARE(tile(i)->camera()->hostname(), QString::fromStdString(m_cameras->camera(i).uid));
        QTRY_VERIFY_WITH_TIMEOUT(
            tile(i)->findChild<QLabel *>("labelStatus")->text().startsWith("320x180  "), patience);
    }
    expectAllAlive();
    for (int i = 0; i < cameraCount; ++i)
        m_keyFramesBefore << m_cameras->statusNumber("key_frame_requests", i);
    QCOMPARE(soundtap::openDevices(), 0);
}

void TestGrid::expectAllAlive()
{
    std::vector<PictureWatch> watches;
    for (int i = 0; i < cameraCount; ++i)
        watches.emplace_back(*picture(i));
    const auto allMoved = [&watches] {
        const auto moved = [](PictureWatch &watch) { return watch.hasMoved(); };
        return std::count_if(watches.begin(), watches.end(), moved) == cameraCount;
    };
    QTRY_VERIFY_WITH_TIMEOUT(allMoved(), patience);
}

void TestGrid::hear()
{
    for (const int index : {5, 10}) {
        m_input->click(picture(index));
        QTRY_VERIFY_WITH_TIMEOUT(isSelected(index), patience);
        QCOMPARE(grid()->selectedTile(), tile(index));
        QTRY_VERIFY_WITH_TIMEOUT(soundtap::pitch() == soundtap::pitchOf(index) &&
                                     soundtap::openDevices() == 1,
                                 patience);
    }
    QVERIFY(!isSelected(5));
    click(page(), "btnMute");
    QTRY_COMPARE_WITH_TIMEOUT(soundtap::openDevices(), 0, patience);
    click(page(), "btnMute");
    QTRY_COMPARE_WITH_TIMEOUT(soundtap::pitch(), soundtap::pitchOf(10), patience);
}

void TestGrid::takePhotos()
{
    click(page(), "btnSnapshot");
    for (const auto &camera : m_cameras->cameras()) {
        const auto photos = [&] { return m_run->albumFiles(camera.uid, stamp + "\\.jpg"); };
        QTRY_COMPARE_WITH_TIMEOUT(photos().size(), 1, patience);
        QTRY_COMPARE_WITH_TIMEOUT(QImage(photos().first()).size(), pictureSize, patience);
    }
}

void TestGrid::beginRecording()
{
    for (int i = 0; i < cameraCount; ++i)
        m_cameras->status(i); // from here on the cameras tell how late they send their frames
    ModalScript script([this](CSelectCameraRecordingForm *dialog) {
        tick(dialog, m_recorded);
        m_recording.start();
        click(dialog, "btnOK");
    });
    click(page(), "btnRecord");
    QTRY_VERIFY_WITH_TIMEOUT(script.done() && allWriting(true), patience);
    m_surelyRecording = m_recording.elapsed();
    for (int i = 0; i < cameraCount; ++i) {
        const bool marked = m_recorded.contains(i);
        QCOMPARE(
            tile(i)->findChild<QLabel *>("labelRecording")->styleSheet().contains("recordbtn_down"),
            marked);
        QCOMPARE(bool(tile(i)->camera()->is_writing()), marked);
    }
}

void TestGrid::fullScreenOfATile()
{
    QWidget *surface = picture(6);
    m_input->doubleClick(surface);
    QTRY_VERIFY_WITH_TIMEOUT(surface->isFullScreen() && surface->isActiveWindow(), patience);
    QTRY_COMPARE_WITH_TIMEOUT(surface->size(), surface->screen()->size(), patience);
    PictureWatch large(*surface);
    QTRY_VERIFY_WITH_TIMEOUT(large.hasMoved(), patience);
    m_input->key(XK_Escape);
    QTRY_VERIFY_WITH_TIMEOUT(!surface->isFullScreen() && !surface->isWindow(), patience);
    expectAllAlive();
}

void TestGrid::changeOfViewAsksFirst()
{
    QTRY_VERIFY_WITH_TIMEOUT(m_recording.elapsed() > recorded, patience);
    const QList<CMultiLiveItemForm *> before = grid()->tiles();
    const auto isTheQuestion = [](const CMessageBox *box) {
        return box->findChild<QLabel *>("labelMessage")->text() ==
               "By changing view your recording will be stop.";
    };
    {
        ModalScript script([&](CMessageBox *box) {
            QVERIFY(isTheQuestion(box));
            click(box, "btnCancel");
        });
        click(page(), "btnSelect");
        QTRY_VERIFY_WITH_TIMEOUT(script.done() && !QApplication::activeModalWidget(), patience);
        QCOMPARE(grid()->tiles(), before);
        QVERIFY(allWriting(true));
    }
    ModalScript script;
    script
        .then([&](CMessageBox *box) {
            QVERIFY(isTheQuestion(box));
            m_atLeast = seconds(m_recording.elapsed() - m_surelyRecording);
            click(box, "btnOk");
        })
        .then([this](CSelectCameraForm *dialog) {
            m_atMost = seconds(m_recording.elapsed());
            QVERIFY(allWriting(false));
            click(dialog, "btnClose");
        });
    click(page(), "btnSelect");
    QTRY_VERIFY_WITH_TIMEOUT(script.done() && !QApplication::activeModalWidget(), patience);
    QCOMPARE(grid()->tiles(), before);
}

void TestGrid::judgeClips()
{
    for (int i = 0; i < cameraCount; ++i) {
        const std::string &uid = m_cameras->camera(i).uid;
        const QStringList clips = m_run->albumFiles(uid, stamp + "\\.mp4");
        QCOMPARE(clips.size(), m_recorded.contains(i) ? 1 : 0);
        if (clips.isEmpty())
            continue;
        const QString clip = clips.first();
        QVERIFY(QFile::exists(clip + ".jpeg"));
        // It is finished behind the button.
        QVERIFY(QTest::qWaitFor([&] { return decodingErrors(clip).isEmpty(); }, patience));
        const ClipFacts facts = clipFacts(clip);
        QVERIFY2(
            facts.seconds > m_atLeast - 1 && facts.seconds < m_atMost + 1,
            qPrintable(
                QString("%1 s of %2 to %3 s").arg(facts.seconds).arg(m_atLeast).arg(m_atMost)));
        QCOMPARE(QSet<QString>(facts.contents.begin(), facts.contents.end()).size(), 2 * frameRate);
        auto status = m_cameras->status(i);
        const long asked =
            std::atol(status["key_frame_requests"].c_str()) - m_keyFramesBefore.at(i);
        const double cameraGap = seconds(std::atol(status["longest_frame_gap_ms"].c_str()));
        const QStringList breaks = breaksInOrder(facts.contents);
        QVERIFY2(breaks.size() <= asked, qPrintable(breaks.join(", ")));
        // A simulated camera stamps a frame when its turn comes, and late on a busy machine.
        const double late = std::max(0.0, cameraGap - 1.0 / frameRate);
        QVERIFY2(
            facts.longestGap < longestGap + late,
            qPrintable(QString("%1 s, of the camera %2 s").arg(facts.longestGap).arg(cameraGap)));
        if (isInstalled("mpv"))
            QVERIFY(playsInMpv(clip, 5 * frameRate));
    }
    if (isInstalled("vlc")) {
        const QString clip = m_run->albumFiles(m_cameras->camera(0).uid, stamp + "\\.mp4").first();
        QVERIFY(framesShownByVlc(clip) > 5);
    }
    for (const char *player : {"mpv", "vlc"})
        if (!isInstalled(player))
            qWarning("%s is not installed: no recording was played in it", player);
}

void TestGrid::quit()
{
    auto *close = m_window->findChild<QToolButton *>("btnClose");
    QSignalSpy clicked(close, &QToolButton::clicked);
    m_input->click(close);
    QTRY_COMPARE_WITH_TIMEOUT(clicked.count(), 1, patience);
}

QTEST_APPLESS_MAIN(TestGrid)
#include "tst_grid.moc"
