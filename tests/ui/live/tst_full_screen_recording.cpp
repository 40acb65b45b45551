#include "camera/camera_list.h"
#include "camsim/camsim_process.h"
#include "resources/resources.h"
#include "settings/camera_settings.h"
#include "tests/settings/settings_home.h"
#include "ui/live/play_camera_form.h"
#include "ui/live/video_frame.h"

#include <QDir>
#include <QProcess>
#include <QScopeGuard>
#include <QScreen>
#include <QToolButton>
#include <QtTest>

#include <algorithm>

using zelvaro::test::CamsimProcess;

namespace {

constexpr int deadline = 60'000; // milliseconds
// Between two frames of a clip; the camera's are 40 ms apart. A stream that starts again is away
// for longer, and its clip ends.
constexpr double maxGap = 0.5; // seconds

/// Times of the frames of a clip, in seconds.
QVector<double> frameTimes(const QString &clip)
{
    QProcess ffprobe;
    ffprobe.start(QStringLiteral("ffprobe"),
                  {"-v", "error", "-select_streams", "v", "-show_entries", "packet=pts_time", "-of",
                   "csv=p=0", clip});
    QVector<double> times;
    if (!ffprobe.waitForFinished(deadline))
        return times;
    for (const QByteArray &line : ffprobe.readAllStandardOutput().split('\n'))
        if (!line.trimmed().isEmpty())
            times << line.split(',').first().toDouble();
    std::sort(times.begin(), times.end());
    return times;
}

double largestGap(const QVector<double> &times)
{
    double gap = 0;
    for (int i = 1; i < times.size(); ++i)
        gap = std::max(gap, times.at(i) - times.at(i - 1));
    return gap;
}

/// What the screen shows of a widget, in a few places.
QVector<QRgb> shownPixels(QWidget *widget)
{
    QVector<QRgb> pixels;
    for (const double place : {0.2, 0.35, 0.5, 0.65, 0.8}) {
        const QPoint at =
            widget->mapToGlobal({int(place * widget->width()), int(place * widget->height())});
        const QPixmap pixel = widget->screen()->grabWindow(0, at.x(), at.y(), 1, 1);
        pixels << pixel.toImage().pixel(0, 0);
    }
    return pixels;
}

bool showsPicture(QWidget *widget)
{
    const QVector<QRgb> pixels = shownPixels(widget);
    return std::any_of(pixels.begin(), pixels.end(),
                       [](QRgb pixel) { return (pixel & RGB_MASK) != 0; });
}

} // namespace

/// The stream engine and a simulated camera on a real display, as the program runs: the engine ends
/// stream and recording when the window that it draws on is another one.
class TestFullScreenRecording : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { zelvaro::initResources(); }
    void streamAndRecordingGoOnThroughTheFullScreen();
};

void TestFullScreenRecording::streamAndRecordingGoOnThroughTheFullScreen()
{
    qputenv("ZELVARO_DISCOVERY_MULTICAST", "0");
    const SettingsHome home;
    const CamsimProcess cameras({"--canned", "--main-size", "640x360"});
    CameraSettings &settings = CameraSettings::instance();
    settings.load();
    settings.setAlbumPath(home.path() + QStringLiteral("/Album"));
    settings.addRecord(CAMERA_TYPE_P2P, QString::fromStdString(cameras.camera().host()),
                       QStringLiteral("admin"), QStringLiteral("camsim"), QStringLiteral("Door"),
                       false);
    CCameraList::instance().startSessions(settings);
    const auto end = qScopeGuard([] {
        CCameraList::instance().closing();
        CCameraList::instance().destroyAll();
    });
    CCamera *camera = CCameraList::instance().at(0);
    QTRY_COMPARE_WITH_TIMEOUT(camera->get_state(), CAMERA_STATE_CONNECTED, deadline);

    CPlayCameraForm page;
    page.setGeometry(100, 100, 900, 700);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page, deadline));
    page.SetCamera(camera);
    page.StartPlay();
    QTRY_VERIFY_WITH_TIMEOUT(page.IsPlaying(), deadline);
    auto *frame = page.findChild<CVideoFrame *>();
    QTRY_VERIFY_WITH_TIMEOUT(showsPicture(frame), deadline);

    QTest::mouseClick(page.findChild<QToolButton *>("btnRecord"), Qt::LeftButton);
    const QDir album(settings.cameraFolder(camera->hostname()));
    const auto clips = [&album] { return album.entryInfoList({"*.mp4"}, QDir::Files, QDir::Name); };
    QTRY_COMPARE_WITH_TIMEOUT(clips().size(), 1, deadline);
    const QString clip = clips().first().filePath();
    const auto growsOn = [&clip] {
        constexpr qint64 someFrames = 50'000; // bytes
        const qint64 before = QFileInfo(clip).size();
        return QTest::qWaitFor([&] { return QFileInfo(clip).size() > before + someFrames; },
                               deadline);
    };
    QVERIFY(growsOn());
    const WId window = frame->renderSurface()->winId();
    QElapsedTimer recorded;
    recorded.start();
    for (int round = 0; round < 3; ++round) {
        QTest::mouseDClick(frame->renderSurface(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(frame->size(), frame->screen()->size(), deadline);
        QTRY_VERIFY_WITH_TIMEOUT(showsPicture(frame), deadline);
        QVERIFY(growsOn());
        QVERIFY(page.IsPlaying());
        QTest::keyClick(frame, Qt::Key_Escape);
        QTRY_VERIFY_WITH_TIMEOUT(!frame->isFullScreen(), deadline);
        QTRY_VERIFY_WITH_TIMEOUT(showsPicture(frame), deadline);
        QVERIFY(growsOn());
        QVERIFY(page.IsPlaying());
    }
    const double seconds = double(recorded.elapsed()) / 1000;
    QCOMPARE(frame->renderSurface()->winId(), window);
    QCOMPARE(clips().size(), 1);
    QVERIFY(camera->is_writing());

    QTest::mouseClick(page.findChild<QToolButton *>("btnRecord"), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!camera->is_writing(), deadline);
    page.StopPlay();
    QTRY_VERIFY_WITH_TIMEOUT(!frameTimes(clip).isEmpty(), deadline);
    // The end of the file is written in the background.
    QTRY_VERIFY_WITH_TIMEOUT(frameTimes(clip).last() > seconds, deadline);
    const QVector<double> times = frameTimes(clip);
    QVERIFY2(largestGap(times) < maxGap, qPrintable(QString::number(largestGap(times))));
    QCOMPARE(clips().size(), 1);
}

int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_NativeWindows);
    QApplication app(argc, argv);
    TestFullScreenRecording test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_full_screen_recording.moc"
