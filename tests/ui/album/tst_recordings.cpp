#include "camsim/camsim_process.h"
#include "platform/cammgr/cammgr.h"
#include "ui/album/click_video_player.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/album/play_video_form.h"

#include <QDir>
#include <QLabel>
#include <QLibrary>
#include <QProcess>
#include <QTemporaryDir>
#include <QToolButton>
#include <QtTest>

#include <phonon/mediaobject.h>

#include <optional>

using zelvaro::test::CamsimProcess;

namespace {

constexpr int patience = 60'000;     // milliseconds
constexpr double clipLength = 6;     // seconds that a clip lasts at least
constexpr double lengthMargin = 0.1; // seconds; the camera's frames are 40 ms apart
constexpr double seekMargin = 1.5;   // seconds; a seek may end at a key frame, one each second

/// Where a player says it is, in seconds.
struct Playback
{
    double length = 0;
    double middle = 0; ///< the place that a seek to half of the length has led to
};

QString outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(patience))
        return {};
    return QString::fromUtf8(process.readAllStandardOutput());
}

bool isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

/// Length of the pictures that are on disk; 0 while there are none.
double lengthOnDisk(const QString &clip)
{
    return outputOf("ffprobe",
                    {"-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", clip})
        .toDouble();
}

bool isOpenHere(const QString &file)
{
    const QFileInfoList handles = QDir("/proc/self/fd").entryInfoList(QDir::Files | QDir::System);
    return std::any_of(handles.cbegin(), handles.cend(),
                       [&](const QFileInfo &handle) { return handle.symLinkTarget() == file; });
}

// --- the players ---------------------------------------------------------------------------------
// Each gives nothing when the recording cannot be played.

std::optional<Playback> playWithFfprobe(const QString &clip)
{
    Playback result;
    result.length = lengthOnDisk(clip);
    result.middle = outputOf("ffprobe", {"-v", "error", "-select_streams", "v", "-read_intervals",
                                         QString("%1%+#1").arg(result.length / 2), "-show_entries",
                                         "frame=pts_time", "-of", "csv=p=0", clip})
                        .section('\n', 0, 0)
                        .remove(',')
                        .toDouble();
    return result;
}

std::optional<Playback> playWithMpv(const QString &clip)
{
    const QString output =
        outputOf("mpv", {"--no-config", "--vo=null", "--ao=null", "--start=50%", "--frames=1",
                         "--term-playing-msg=STARTS ${=duration} ${=time-pos}", clip});
    const QStringList words =
        output.section("STARTS ", 1).section('\n', 0, 0).split(' ', Qt::SkipEmptyParts);
    if (words.size() != 2)
        return {};
    return Playback{words.at(0).toDouble(), words.at(1).toDouble()};
}

/// VLC's library, as far as it is needed here. Its program refuses to run for the superuser.
class Vlc
{
public:
    Vlc() : m_library("vlc", 5)
    {
        const char *const options[] = {"--vout=dummy", "--aout=adummy", "--no-xlib", "--quiet"};
        const auto create = resolve<void *(*)(int, const char *const *)>("libvlc_new");
        m_instance = create ? create(std::size(options), options) : nullptr;
    }
    ~Vlc()
    {
        if (m_instance)
            resolve<void (*)(void *)>("libvlc_release")(m_instance);
    }
    Vlc(const Vlc &) = delete;
    Vlc &operator=(const Vlc &) = delete;

    bool isInstalled() const { return m_instance; }

    std::optional<Playback> play(const QString &clip)
    {
        constexpr int playing = 3; // libvlc_state_t
        const auto newMedia = resolve<void *(*)(void *, const char *)>("libvlc_media_new_path");
        const auto newPlayer = resolve<void *(*)(void *)>("libvlc_media_player_new_from_media");
        const auto state = resolve<int (*)(void *)>("libvlc_media_player_get_state");
        const auto length = resolve<qint64 (*)(void *)>("libvlc_media_player_get_length");
        const auto time = resolve<qint64 (*)(void *)>("libvlc_media_player_get_time");
        const auto setTime = resolve<void (*)(void *, qint64)>("libvlc_media_player_set_time");
        const auto setPause = resolve<void (*)(void *, int)>("libvlc_media_player_set_pause");

        void *media = newMedia(m_instance, QFile::encodeName(clip));
        void *player = newPlayer(media);
        resolve<int (*)(void *)>("libvlc_media_player_play")(player);
        std::optional<Playback> result;
        if (QTest::qWaitFor([&] { return state(player) == playing && length(player) > 0; },
                            patience)) {
            setPause(player, 1);
            result = Playback{double(length(player)) / 1000, 0};
            const qint64 wanted = length(player) / 2;
            setTime(player, wanted);
            setPause(player, 0);
            // It reports the requested position until it has reached it.
            if (QTest::qWaitFor([&] { return time(player) > 0 && time(player) != wanted; },
                                patience))
                result->middle = double(time(player)) / 1000;
        }
        resolve<void (*)(void *)>("libvlc_media_player_stop")(player);
        resolve<void (*)(void *)>("libvlc_media_player_release")(player);
        resolve<void (*)(void *)>("libvlc_media_release")(media);
        return result;
    }

private:
    template <typename Function>
    Function resolve(const char *name)
    {
        return reinterpret_cast<Function>(m_library.resolve(name));
    }

    QLibrary m_library;
    void *m_instance = nullptr;
};

std::optional<Playback> playWithPhonon(const QString &clip)
{
    ClickVideoPlayer player;
    player.resize(320, 180);
    player.show();
    player.playFile(clip);
    Phonon::MediaObject *media = player.mediaObject();
    if (!QTest::qWaitFor([&] { return player.isPlaying() && media->totalTime() > 0; }, patience))
        return {};
    player.pause();
    if (!QTest::qWaitFor([&] { return player.isPaused(); }, patience) || !media->isSeekable())
        return {};
    Playback result{double(media->totalTime()) / 1000, 0};
    const qint64 before = media->currentTime();
    player.seek(media->totalTime() / 2);
    if (QTest::qWaitFor([&] { return media->currentTime() > before + 500; }, patience))
        result.middle = double(media->currentTime()) / 1000;
    player.closeFile();
    return result;
}

} // namespace

/// What the stream engine records, in the album's player and in others: finished, cut off by the
/// death of the process, and while it is being written.
class TestRecordings : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();

    void everyPlayerSeesTheSameLengthAndSeeks_data();
    void everyPlayerSeesTheSameLengthAndSeeks();
    void aRecordingThatIsBeingWrittenPlaysOnThePage();

private:
    void recordFinished();
    void recordUntilKilled();
    QString file(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    QTemporaryDir m_folder;
    std::unique_ptr<CamsimProcess> m_camera;
    std::unique_ptr<Vlc> m_vlc;
    RtspPlayer *m_session = nullptr;
};

void TestRecordings::initTestCase()
{
    if (!isInstalled("ffprobe"))
        QSKIP("ffprobe is not installed, by which the others are judged");
    m_camera = std::make_unique<CamsimProcess>(std::vector<std::string>{
        "--warm", "--main-size", "640x360", "--main-bitrate", "800000", "--key-interval", "1"});
    const auto &camera = m_camera->camera();
    m_session = RtspPlayer_Create(
        camera.mainUrl.c_str(), camera.user.c_str(), camera.password.c_str(),
        [](int, int, void *, char **) {}, nullptr);
    QVERIFY(m_session);
    RtspPlayer_SetVolume(m_session, 0);
    RtspPlayer_SetupP2PliveStream(m_session, "/live/0/h264.sdp", 0);
    RtspPlayer_Play(m_session);
    QTRY_VERIFY_WITH_TIMEOUT(RtspPlayer_IsPlaying(m_session), patience);
    recordFinished();
    if (!QTest::currentTestFailed())
        recordUntilKilled();
    m_vlc = std::make_unique<Vlc>();
}

void TestRecordings::cleanupTestCase()
{
    m_vlc.reset();
    if (m_session)
        RtspPlayer_DeleteSync(m_session);
    m_camera.reset();
}

void TestRecordings::recordFinished()
{
    const QString clip = file("finished.mp4");
    QCOMPARE(RtspPlayer_BeginWriting(m_session, QFile::encodeName(file("finished")), 0), 0);
    QTRY_VERIFY_WITH_TIMEOUT(lengthOnDisk(clip) > clipLength, patience);
    RtspPlayer_EndWriting(m_session);
    QTRY_VERIFY_WITH_TIMEOUT(!isOpenHere(clip), patience);
}

void TestRecordings::recordUntilKilled()
{
    const auto &camera = m_camera->camera();
    QProcess recorder;
    recorder.start(RECORDING_CHILD,
                   {QString::fromStdString(camera.mainUrl), QString::fromStdString(camera.user),
                    QString::fromStdString(camera.password), file("cut off")});
    QTRY_VERIFY_WITH_TIMEOUT(lengthOnDisk(file("cut off.mp4")) > clipLength, patience);
    recorder.kill();
    QVERIFY(recorder.waitForFinished(patience));
    QCOMPARE(recorder.exitStatus(), QProcess::CrashExit);
}

void TestRecordings::everyPlayerSeesTheSameLengthAndSeeks_data()
{
    QTest::addColumn<QString>("player");
    QTest::addColumn<QString>("clip");
    for (const char *player : {"Phonon", "VLC", "mpv", "ffprobe"})
        for (const char *clip : {"finished", "cut off"})
            QTest::addRow("%s, %s", player, clip) << player << QString("%1.mp4").arg(clip);
}

void TestRecordings::everyPlayerSeesTheSameLengthAndSeeks()
{
    QFETCH(QString, player);
    QFETCH(QString, clip);
    const QString path = m_folder.filePath(clip);
    std::optional<Playback> seen;
    if (player == "Phonon") {
        if (!ClickVideoPlayer().hasBackEnd())
            QSKIP("no back end of Phonon is installed");
        seen = playWithPhonon(path);
    } else if (player == "VLC") {
        if (!m_vlc->isInstalled())
            QSKIP("VLC is not installed");
        seen = m_vlc->play(path);
    } else if (player == "mpv") {
        if (!isInstalled("mpv"))
            QSKIP("mpv is not installed");
        seen = playWithMpv(path);
    } else {
        seen = playWithFfprobe(path);
    }
    QVERIFY(seen);
    const double length = lengthOnDisk(path);
    qInfo("%.3f s of %.3f s; half of it is at %.3f s", seen->length, length, seen->middle);
    QVERIFY2(qAbs(seen->length - length) < lengthMargin,
             qPrintable(QString("%1 s, should be %2 s").arg(seen->length).arg(length)));
    QVERIFY2(qAbs(seen->middle - length / 2) < seekMargin,
             qPrintable(QString("at %1 s of %2 s").arg(seen->middle).arg(length)));
}

void TestRecordings::aRecordingThatIsBeingWrittenPlaysOnThePage()
{
    if (!ClickVideoPlayer().hasBackEnd())
        QSKIP("no back end of Phonon is installed");
    const QString clip = file("written.mp4");
    QCOMPARE(RtspPlayer_BeginWriting(m_session, QFile::encodeName(file("written")), 0), 0);
    QTRY_VERIFY_WITH_TIMEOUT(lengthOnDisk(clip) > 2, patience);

    QWidget owner;
    PageHost::TileList tiles;
    for (const QString &name : {QString("written.mp4"), QString("finished.mp4")}) {
        tiles << new CPhotoMgrItemForm(&owner);
        tiles.last()->setItem(name, m_folder.filePath(name));
    }
    CPlayVideoForm page;
    page.resize(900, 700);
    page.show();
    page.setList(&tiles);
    page.showVideo(tiles.first());
    const auto *status = page.findChild<QLabel *>("labelStatus");
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), QString("written.mp4  640x360(100%)"), patience);
    QTRY_VERIFY_WITH_TIMEOUT(page.player()->isPlaying(), patience);
    // As far as it went when it was opened.
    QTRY_VERIFY_WITH_TIMEOUT(page.player()->mediaObject()->state() == Phonon::StoppedState,
                             patience);
    QVERIFY(RtspPlayer_IsWriting(m_session));
    QTest::mouseClick(page.findChild<QToolButton *>("btnNext"), Qt::LeftButton);
    QTRY_COMPARE_WITH_TIMEOUT(status->text(), QString("finished.mp4  640x360(100%)"), patience);
    page.stop(true);
    // Nobody has disturbed the writer.
    RtspPlayer_EndWriting(m_session);
    QTRY_VERIFY_WITH_TIMEOUT(!isOpenHere(clip), patience);
    QVERIFY(lengthOnDisk(clip) > 2);
}

QTEST_MAIN(TestRecordings)
#include "tst_recordings.moc"
