#include "tests/e2e/clip_check.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <vector>

#include <unistd.h>

namespace {

constexpr int patience = 60'000; // milliseconds

struct Result
{
    bool good = false; ///< ended by itself, with exit code 0
    QString output;
    QString errors;
};

Result run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(patience))
        return {};
    return {process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QString readWithFfprobe(const QString &file, const QStringList &options)
{
    const QStringList common{"-v", "error", "-select_streams", "v", "-of", "csv=p=0"};
    return run("ffprobe", common + options + QStringList{file}).output;
}

} // namespace

bool isInstalled(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

ClipFacts clipFacts(const QString &file)
{
    std::vector<double> times;
    ClipFacts facts;
    for (const QString &line : readWithFfprobe(file, {"-show_data_hash", "crc32", "-show_entries",
                                                      "packet=pts_time,data_hash"})
                                   .split('\n', Qt::SkipEmptyParts)) {
        times.push_back(line.section(',', 0, 0).toDouble());
        facts.contents << line.section(',', 1, 1);
    }
    if (times.size() < 2)
        return facts;
    std::sort(times.begin(), times.end());
    for (std::size_t i = 1; i < times.size(); ++i)
        facts.longestGap = std::max(facts.longestGap, times[i] - times[i - 1]);
    const double shown = times.back() - times.front();
    facts.seconds = shown + shown / static_cast<double>(times.size() - 1);
    return facts;
}

int decodedFrames(const QString &file)
{
    return readWithFfprobe(file, {"-count_frames", "-show_entries", "stream=nb_read_frames"})
        .trimmed()
        .toInt();
}

QString decodingErrors(const QString &file)
{
    // Raw, so that nothing but the decoder has an opinion on the times.
    const Result result =
        run("ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", file, "-map", "0:v", "-f", "rawvideo",
                       "/dev/null", "-map", "0:a?", "-f", "s16le", "/dev/null"});
    return result.good ? result.errors : result.errors + "ffmpeg failed";
}

bool playsInMpv(const QString &file, int frames)
{
    return run("mpv", {"--no-config", "--vo=null", "--ao=null", "--untimed",
                       "--frames=" + QString::number(frames), file})
        .good;
}

int framesShownByVlc(const QString &file)
{
    // A folder that any user whom VLC runs as may read and write.
    QTemporaryDir folder;
    const QString clip = folder.filePath("clip.mp4");
    QFile::copy(file, clip);
    QFile::setPermissions(folder.path(), QFile::Permissions(0x7777));
    QFile::setPermissions(clip, QFile::Permissions(0x6666));
    // A busy machine shows each frame too, only later.
    QStringList command{"vlc",
                        "--intf=dummy",
                        "--no-audio",
                        "--vout=dummy",
                        "--video-filter=scene",
                        "--scene-ratio=10",
                        "--scene-format=png",
                        "--scene-prefix=shown",
                        "--scene-path=" + folder.path(),
                        "--rate=8",
                        "--no-drop-late-frames",
                        "--no-skip-frames",
                        "--play-and-exit",
                        clip};
    if (geteuid() == 0) {
        command = QStringList{"setpriv",        "--reuid=65534", "--regid=65534",
                              "--clear-groups", "env",           "HOME=" + folder.path()} +
                  command;
    }
    run(command.first(), command.mid(1));
    return QDir(folder.path()).entryList({"shown*.png"}).size();
}
