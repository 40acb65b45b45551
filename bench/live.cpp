// One live camera on the screen: how far the picture is behind life, how soon it comes, and what it
// costs, next to ffplay and mpv on the same stream in the same run.
//
// bench_live [SECONDS]: how long each player is measured (default 20).
// bench_live --growth MINUTES: plays our engine alone for that long; whether its delay grows.

#include "bench/latency_probe.h"
#include "bench/live_player.h"
#include "bench/measured_process.h"
#include "bench/screen_reader.h"
#include "bench/statistics.h"
#include "camsim/camsim_process.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

using namespace std::chrono_literals;
using bench::Clock;
using bench::milliseconds;
using bench::Player;
using bench::playMoment;

namespace {

constexpr int width = 640;
constexpr int height = 360;
constexpr int starts = 5; // first pictures measured for each player
constexpr auto firstPictureDeadline = 20s;
constexpr auto settling = 3s;
constexpr std::chrono::seconds defaultDuration = 20s;

struct Result
{
    double firstPicture = 0;     // median, ms, from the start of the process
    double firstPictureCall = 0; // median, ms, from the call to play
    std::vector<double> latency; // ms
    double cpu = 0;              // share of one core
    double memory = 0;           // MB
    int threads = 0;
};

bool measure(const Player &player, std::chrono::seconds duration, bench::ScreenReader &screen,
             Result &result)
{
    bench::LatencyProbe probe(screen);
    std::vector<double> fromStart, fromCall;
    for (int start = 1; start <= starts; ++start) {
        screen.clear();
        bench::MeasuredProcess process(player.command, player.tellsPlay);
        const auto asked = playMoment(player, process);
        const auto seen = probe.waitForPicture(asked, firstPictureDeadline);
        if (!seen)
            return false;
        fromStart.push_back(milliseconds(*seen - process.started()));
        fromCall.push_back(milliseconds(*seen - asked));
        if (start < starts)
            continue;
        probe.sample(settling);
        const double cpuBefore = process.cpuSeconds();
        const auto before = Clock::now();
        result.latency = probe.sample(duration);
        const double elapsed = milliseconds(Clock::now() - before) / 1000;
        result.cpu = (process.cpuSeconds() - cpuBefore) / elapsed;
        result.memory = process.memoryMegabytes();
        result.threads = process.threads();
    }
    result.firstPicture = bench::percentile(fromStart, 0.5);
    result.firstPictureCall = bench::percentile(fromCall, 0.5);
    return true;
}

/// The camera that all players show, found by them.
class Camera
{
public:
    Camera()
    {
        setenv("ZELVARO_DISCOVERY_TARGETS", m_cameras.camera().discovery.c_str(), 1);
        setenv("ZELVARO_DISCOVERY_MULTICAST", "0", 1);
    }
    const zelvaro::test::SimulatedCamera &get() const { return m_cameras.camera(); }

private:
    const zelvaro::test::CamsimProcess m_cameras{
        {"--count", "1", "--sub-size", "640x360", "--sub-fps", "25", "--key-interval", "1"}};
};

int runGrowth(int minutes)
{
    const Camera camera;
    bench::ScreenReader screen(width, height);
    bench::LatencyProbe probe(screen);
    const Player player = bench::livePlayers(camera.get(), width, height).front();
    std::printf("%s, one camera, %dx%d at 25 fps, TCP on loopback\n\n%6s %8s %8s %8s %10s %8s\n",
                player.name.c_str(), width, height, "minute", "median", "95 %", "frames", "memory",
                "threads");
    screen.clear();
    bench::MeasuredProcess process(player.command, player.tellsPlay);
    if (!probe.waitForPicture(playMoment(player, process), firstPictureDeadline)) {
        std::printf("showed no picture\n");
        return 1;
    }
    probe.sample(settling);
    std::vector<double> medians, memories;
    for (int minute = 1; minute <= minutes; ++minute) {
        const std::vector<double> latency = probe.sample(1min);
        medians.push_back(bench::percentile(latency, 0.5));
        memories.push_back(process.memoryMegabytes());
        std::printf("%6d %8.1f %8.1f %8zu %10.1f %8d\n", minute, medians.back(),
                    bench::percentile(latency, 0.95), latency.size(), memories.back(),
                    process.threads());
        std::fflush(stdout);
    }
    std::printf("\nGrowth: %.2f ms of delay and %.2f MB a minute\n", bench::slope(medians),
                bench::slope(memories));
    return 0;
}

int run(std::chrono::seconds duration)
{
    const Camera camera;
    bench::ScreenReader screen(width, height);

    std::printf("One camera, %dx%d at 25 fps, a key frame each second, TCP on loopback; %lld s "
                "each, %d starts.\n\n",
                width, height, static_cast<long long>(duration.count()), starts);
    std::printf("%-18s %8s %8s %8s %12s %12s %8s %8s %8s\n", "player", "median", "95 %", "frames",
                "first, call", "first, start", "CPU", "memory", "threads");
    std::printf("%-18s %8s %8s %8s %12s %12s %8s %8s %8s\n", "", "ms", "ms", "", "ms", "ms",
                "% core", "MB", "");
    double ownMedian = 0;
    for (const Player &player : bench::livePlayers(camera.get(), width, height)) {
        Result result;
        if (!measure(player, duration, screen, result)) {
            std::printf("%-18s showed no picture\n", player.name.c_str());
            continue;
        }
        const double median = bench::percentile(result.latency, 0.5);
        std::printf("%-18s %8.0f %8.0f %8zu %12.0f %12.0f %8.1f %8.1f %8d", player.name.c_str(),
                    median, bench::percentile(result.latency, 0.95), result.latency.size(),
                    result.firstPictureCall, result.firstPicture, result.cpu * 100, result.memory,
                    result.threads);
        if (player.tellsPlay)
            ownMedian = median;
        else if (ownMedian > 0)
            std::printf("   %.1f times our latency", median / ownMedian);
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        if (argc > 2 && std::string(argv[1]) == "--growth")
            return runGrowth(std::max(1, std::atoi(argv[2])));
        const int seconds = argc > 1 ? std::atoi(argv[1]) : 0;
        return run(seconds > 0 ? std::chrono::seconds(seconds) : defaultDuration);
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "bench_live: %s\n", problem.what());
        return 1;
    }
}
