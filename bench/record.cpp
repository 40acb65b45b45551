// Recordings that are killed at a random moment: how many of the files play afterwards, and how
// much is missing at their end, next to a plain MP4 muxer that records the same stream and dies at
// the same moment.
//
// bench_record [--kills N]: recordings of each kind (default 100).

#include "bench/measured_process.h"
#include "bench/statistics.h"
#include "camsim/camsim_process.h"
#include "camsim/timecode.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <cstring>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <poll.h>
#include <random>

using namespace std::chrono_literals;
using bench::Clock;
using bench::MeasuredProcess;

namespace {

constexpr int width = 640;
constexpr int height = 360;
constexpr int framesPerSecond = 25;
constexpr int keyInterval = 2; // seconds
constexpr std::chrono::milliseconds shortest = 2s;
constexpr std::chrono::milliseconds longest = 4s;
constexpr auto patience = 20s; // for a recorder to begin
constexpr double mostMissing = 1;

/// A way to record the camera into a file, as a separate process.
struct Recorder
{
    std::string name;
    std::vector<std::string> command;
    std::string path;
    bool tellsBegin = false; ///< prints a line when it records; else it does when its file grows

    // What became of the files.
    int play = 0;
    int playWhole = 0;                ///< and miss a second at most
    std::vector<double> missing = {}; ///< seconds, of those that play
};

Recorder ownEngine(const zelvaro::test::SimulatedCamera &camera, const TemporaryFolder &folder)
{
    const std::string base = folder.file("engine");
    return {.name = "zelvaro engine",
            .command = {RECORDING_CHILD, camera.subUrl, camera.user, camera.password, base},
            .path = base + ".mp4",
            .tellsBegin = true};
}

Recorder plainMuxer(const zelvaro::test::SimulatedCamera &camera, const TemporaryFolder &folder)
{
    const std::string path = folder.file("plain.mp4");
    return {.name = "mp4mux, plain",
            .command = {"gst-launch-1.0", "-q", "rtspsrc", "location=" + camera.subUrl,
                        "user-id=" + camera.user, "user-pw=" + camera.password, "protocols=tcp",
                        "latency=0", "!", "rtph264depay", "!", "h264parse", "!", "mp4mux", "!",
                        "filesink", "location=" + path},
            .path = path};
}

void pause(std::chrono::milliseconds time)
{
    poll(nullptr, 0, static_cast<int>(time.count()));
}

/// Whether pictures are on their way into the file.
bool waitUntilRecording(const Recorder &recorder, MeasuredProcess &process)
{
    if (recorder.tellsBegin)
        return !process.readLine(patience).empty();
    const auto end = Clock::now() + patience;
    std::error_code error;
    while (Clock::now() < end) {
        const auto size = std::filesystem::file_size(recorder.path, error);
        if (!error && size > 0)
            return true;
        pause(10ms);
    }
    return false;
}

/// The time code in the last frame that can be decoded; nullopt when there is none.
std::optional<std::uint32_t> lastPicture(const std::string &path)
{
    const std::string command = "ffmpeg -v error -i '" + path +
                                "' -an -fps_mode passthrough -f rawvideo -pix_fmt gray - 2>&-";
    const std::unique_ptr<FILE, int (*)(FILE *)> pipe(popen(command.c_str(), "r"), &pclose);
    std::vector<std::uint8_t> picture(std::size_t{width} * height);
    std::optional<std::uint32_t> last;
    while (pipe && fread(picture.data(), 1, picture.size(), pipe.get()) == picture.size()) {
        const auto code = camsim::timecode::readLuma(picture.data(), width, width, height);
        if (code)
            last = code;
    }
    return last;
}

/// Plays without a complaint, and can be sought in by the media framework of the album.
bool plays(const std::string &path)
{
    if (!std::filesystem::exists(path) || !MediaProbe::complaints(path).empty())
        return false;
    const auto seen = MediaProbe::discover(path);
    return seen.video && seen.seekable;
}

void examine(Recorder &recorder, std::uint32_t killed)
{
    const auto last = plays(recorder.path) ? lastPicture(recorder.path) : std::nullopt;
    if (last) {
        const double missing = camsim::timecode::elapsed(*last, killed) / 1000.0;
        ++recorder.play;
        recorder.playWhole += missing <= mostMissing ? 1 : 0;
        recorder.missing.push_back(missing);
    }
    std::filesystem::remove(recorder.path);
}

/// All recorders record the same time and die at the same moment.
void recordAndKill(std::vector<Recorder> &recorders, std::chrono::milliseconds length)
{
    std::vector<std::unique_ptr<MeasuredProcess>> processes;
    for (const Recorder &recorder : recorders)
        processes.push_back(
            std::make_unique<MeasuredProcess>(recorder.command, recorder.tellsBegin));
    for (std::size_t i = 0; i < recorders.size(); ++i)
        if (!waitUntilRecording(recorders[i], *processes[i]))
            throw std::runtime_error(recorders[i].name + " does not record");
    pause(length);
    const std::uint32_t killed = camsim::timecode::now();
    for (const auto &process : processes)
        process->kill();
    for (Recorder &recorder : recorders)
        examine(recorder, killed);
}

void print(const Recorder &recorder, int kills)
{
    std::printf("%-18s %8d %8d", recorder.name.c_str(), kills, recorder.play);
    if (recorder.missing.empty())
        std::printf(" %10s %10s %10s", "all", "all", "all");
    else
        std::printf(" %10.2f %10.2f %10.2f", bench::percentile(recorder.missing, 0.5),
                    bench::percentile(recorder.missing, 0.95),
                    bench::percentile(recorder.missing, 1));
    std::printf(" %12d\n", recorder.playWhole);
}

int run(int kills)
{
    gst_init(nullptr, nullptr);
    const zelvaro::test::CamsimProcess cameras(
        {"--warm", "--sub-size", std::to_string(width) + "x" + std::to_string(height), "--sub-fps",
         std::to_string(framesPerSecond), "--key-interval", std::to_string(keyInterval)});
    const TemporaryFolder folder;
    std::vector<Recorder> recorders = {ownEngine(cameras.camera(), folder)};
    if (bench::isInstalled("gst-launch-1.0"))
        recorders.push_back(plainMuxer(cameras.camera(), folder));

    std::printf("Recordings of %dx%d at %d fps, a key frame every %d s, killed (SIGKILL) at a "
                "random moment after %lld to %lld s.\n\n",
                width, height, framesPerSecond, keyInterval, static_cast<long long>(shortest / 1s),
                static_cast<long long>(longest / 1s));
    std::mt19937 random(20180813);
    std::uniform_int_distribution<long long> length(shortest.count(), longest.count());
    for (int kill = 0; kill < kills; ++kill)
        recordAndKill(recorders, std::chrono::milliseconds(length(random)));

    std::printf("%-18s %8s %8s %10s %10s %10s %12s\n", "recorder", "kills", "play", "median",
                "95 %", "worst", "at most 1 s");
    std::printf("%-18s %8s %8s %10s %10s %10s %12s\n", "", "", "", "s missing", "s missing",
                "s missing", "missing");
    for (const Recorder &recorder : recorders)
        print(recorder, kills);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    int kills = 100;
    if (argc == 3 && std::strcmp(argv[1], "--kills") == 0)
        kills = std::atoi(argv[2]);
    else if (argc != 1)
        kills = 0;
    if (kills < 1) {
        std::fprintf(stderr, "Usage: bench_record [--kills N]\n");
        return 2;
    }
    try {
        return run(kills);
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "bench_record: %s\n", problem.what());
        return 1;
    }
}
