// One live camera behind a slow, lossy network: how far the picture is behind life, and how evenly
// the pictures come, next to ffplay and mpv on the same stream in the same run.
//
// bench_link [SECONDS]: how long each player is measured (default 20).

#include "bench/latency_probe.h"
#include "bench/live_player.h"
#include "bench/screen_reader.h"
#include "bench/statistics.h"
#include "camsim/camsim_process.h"
#include "tests/support/network_link.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <vector>

using namespace std::chrono_literals;
using zelvaro::test::CamsimProcess;
using zelvaro::test::LinkConditions;
using zelvaro::test::NetworkLink;

namespace {

constexpr int width = 640;
constexpr int height = 360;
constexpr auto firstPictureDeadline = 20s;
constexpr auto settling = 6s;
constexpr int defaultSeconds = 20;

const std::vector<LinkConditions> networks = {
    {.delay = 8ms, .jitter = 4ms, .loss = 0.001, .bitsPerSecond = 0},
    {.delay = 20ms, .jitter = 15ms, .loss = 0.005, .bitsPerSecond = 0}};

/// From each picture to the next, ms.
std::vector<double> gapsOf(const std::vector<bench::LatencyProbe::Sighting> &sightings)
{
    std::vector<double> gaps;
    for (std::size_t i = 1; i < sightings.size(); ++i)
        gaps.push_back(bench::milliseconds(sightings[i].moment - sightings[i - 1].moment));
    return gaps;
}

void measure(const bench::Player &player, std::chrono::seconds duration,
             bench::ScreenReader &screen)
{
    bench::LatencyProbe probe(screen);
    screen.clear();
    bench::MeasuredProcess process(player.command, player.tellsPlay);
    if (!probe.waitForPicture(bench::playMoment(player, process), firstPictureDeadline)) {
        std::printf("%-18s showed no picture\n", player.name.c_str());
        return;
    }
    probe.sample(settling);
    const auto sightings = probe.watch(duration);
    std::vector<double> latencies;
    for (const auto &sighting : sightings)
        latencies.push_back(sighting.latency);
    const std::vector<double> gaps = gapsOf(sightings);
    std::printf("%-18s %8.0f %8.0f %8zu %8.0f %8.0f %8.0f\n", player.name.c_str(),
                bench::percentile(latencies, 0.5), bench::percentile(latencies, 0.95),
                sightings.size(), bench::percentile(gaps, 0.5), bench::percentile(gaps, 0.95),
                bench::percentile(gaps, 1));
    std::fflush(stdout);
}

int run(std::chrono::seconds duration)
{
    // Before anything has a thread or a socket.
    NetworkLink link(networks.front());
    std::unique_ptr<CamsimProcess> cameras;
    link.atCamera([&cameras] {
        cameras = std::make_unique<CamsimProcess>(std::vector<std::string>{
            "--bind", NetworkLink::cameraAddress(), "--nagle", "--sub-size", "640x360", "--sub-fps",
            "25", "--key-interval", "1"});
    });
    setenv("ZELVARO_DISCOVERY_TARGETS", cameras->camera().discovery.c_str(), 1);
    setenv("ZELVARO_DISCOVERY_MULTICAST", "0", 1);
    bench::ScreenReader screen(width, height);
    for (const LinkConditions &network : networks) {
        link.setConditions(network);
        std::printf("One camera, %dx%d at 25 fps, TCP with Nagle's algorithm, MTU 1500; delay %lld "
                    "ms, jitter %lld ms, loss %.1f %%; %lld s each.\n\n",
                    width, height, static_cast<long long>(network.delay.count()),
                    static_cast<long long>(network.jitter.count()), network.loss * 100,
                    static_cast<long long>(duration.count()));
        std::printf("%-18s %8s %8s %8s %8s %8s %8s\n", "player", "median", "95 %", "pictures",
                    "gap", "95 %", "longest");
        std::printf("%-18s %8s %8s %8s %8s %8s %8s\n", "", "ms", "ms", "", "ms", "ms", "ms");
        for (const bench::Player &player : bench::livePlayers(cameras->camera(), width, height))
            measure(player, duration, screen);
        std::printf("\n");
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        const int seconds = argc > 1 ? std::atoi(argv[1]) : 0;
        return run(std::chrono::seconds(seconds > 0 ? seconds : defaultSeconds));
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "bench_link: %s\n", problem.what());
        return 1;
    }
}
