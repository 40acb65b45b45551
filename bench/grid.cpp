// Many cameras side by side on the screen: what the grid costs and whether each tile keeps its
// rate, next to plain decoding of the same streams and to as many windows of another player.
//
// bench_grid [--seconds N] [--rounds N] [--silent] [TILES...]: how long each is measured (10), how
// often (1; the cheapest counts), cameras without sound, which grids (1 4 16 36 64 100).

#include "bench/drawing_counter.h"
#include "bench/peers.h"
#include "bench/process_group.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <numeric>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <vector>

using namespace std::chrono_literals;
using bench::Clock;
using Cameras = std::vector<zelvaro::test::SimulatedCamera>;

namespace {

constexpr int screenWidth = 1600;
constexpr int streamWidth = 640;
constexpr auto settling = 3s;
constexpr auto startDeadline = 90s;
// From here on more tiles come from more cameras than anybody watches at full rate.
constexpr int manyTiles = 36;
constexpr int frameRate = 15;
constexpr int rateOfMany = 10;
// A player that shows less than this share of the pictures does not bear that many tiles.
constexpr double minRateShare = 0.9;

struct Options
{
    std::chrono::seconds duration = 10s;
    int rounds = 1;
    bool silent = false;
    std::vector<int> grids;
};

struct Result
{
    double cpu = 0;    // share of one core
    double memory = 0; // MB
    int threads = 0;
    double rate = 0;    // frames a second, mean of the tiles
    double slowest = 0; // the same, of the slowest tile
    double shown = 0;   // ms until the last tile had its first picture; 0: unknown
};

using Results = std::map<int, Result>; // by tiles

enum class Kind
{
    Engine,
    Decoder,
    Scaler, ///< a decoder that does what drawing needs as well, but for the window
    Windows
};

struct Contestant
{
    std::string name;
    Kind kind;
    Results results;
    bool borne = true;
};

int rateOf(int tiles)
{
    return tiles < manyTiles ? frameRate : rateOfMany;
}

void start(Kind kind, const Cameras &cameras, const std::vector<bench::Rectangle> &places,
           bench::ProcessGroup &group)
{
    if (kind == Kind::Engine) {
        group.start(bench::enginePlayer(cameras, places), true);
        return;
    }
    for (std::size_t i = 0; i < cameras.size(); ++i) {
        const std::string url = cameras[i].urlWithLogin(cameras[i].subUrl);
        if (kind == Kind::Decoder)
            group.start(bench::ffmpegDecoder(url), true);
        else if (kind == Kind::Scaler)
            group.start(bench::ffmpegScaler(url, places[i]), true);
        else
            group.start(bench::mpv(url, places[i]));
    }
}

/// Frames that each decoder of a group has reported so far.
class DecoderProgress
{
public:
    explicit DecoderProgress(bench::ProcessGroup &group) : m_group(group), m_frames(group.size()) {}

    const std::vector<int> &frames()
    {
        for (std::size_t i = 0; i < m_frames.size(); ++i) {
            for (std::string line; !(line = m_group.at(i).readLine(1ms)).empty();)
                if (line.starts_with("frame="))
                    m_frames[i] = std::atoi(line.c_str() + 6);
        }
        return m_frames;
    }

private:
    bench::ProcessGroup &m_group;
    std::vector<int> m_frames;
};

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

/// What the group costs, and how many frames each tile got, while something counts them.
template <typename Count>
Result observe(const bench::ProcessGroup &group, Count count)
{
    Result result;
    const double cpuBefore = group.cpuSeconds();
    const auto before = Clock::now();
    const std::vector<int> frames = count();
    const double elapsed = milliseconds(Clock::now() - before) / 1000;
    result.cpu = (group.cpuSeconds() - cpuBefore) / elapsed;
    result.memory = group.memoryMegabytes();
    result.threads = group.threads();
    result.rate = std::accumulate(frames.begin(), frames.end(), 0.0) / elapsed /
                  static_cast<double>(frames.size());
    result.slowest = *std::min_element(frames.begin(), frames.end()) / elapsed;
    return result;
}

std::optional<Result> measureDecoders(bench::ProcessGroup &group, std::chrono::seconds duration)
{
    DecoderProgress progress(group);
    const auto deadline = Clock::now() + startDeadline;
    const auto idle = [&] {
        const std::vector<int> &frames = progress.frames();
        return std::count(frames.begin(), frames.end(), 0) > 0;
    };
    while (idle())
        if (Clock::now() > deadline)
            return {};
    const auto pause = [](std::chrono::seconds length) {
        poll(nullptr, 0, static_cast<int>(length / 1ms));
    };
    pause(settling);
    return observe(group, [&] {
        std::vector<int> before = progress.frames();
        pause(duration);
        std::vector<int> frames = progress.frames();
        std::transform(frames.begin(), frames.end(), before.begin(), frames.begin(), std::minus());
        return frames;
    });
}

std::optional<Result> measureWindows(bench::ProcessGroup &group, std::chrono::seconds duration,
                                     bench::DrawingCounter &screen, bool tellsPlay)
{
    auto asked = group.at(0).started();
    if (tellsPlay && !group.at(0).readLine(startDeadline).empty())
        asked = Clock::now();
    if (!screen.waitForAll(startDeadline))
        return {};
    const double shown = milliseconds(Clock::now() - asked);
    screen.count(settling);
    Result result = observe(group, [&] {
        screen.count(duration);
        return screen.drawings();
    });
    result.shown = shown;
    return result;
}

std::optional<Result> measure(Kind kind, const Cameras &cameras, std::chrono::seconds duration,
                              bench::DrawingCounter &screen)
{
    const auto places = bench::tileGrid(static_cast<int>(cameras.size()), screenWidth, streamWidth);
    screen.setTiles(places);
    bench::ProcessGroup group;
    start(kind, cameras, places, group);
    if (kind == Kind::Decoder || kind == Kind::Scaler)
        return measureDecoders(group, duration);
    return measureWindows(group, duration, screen, kind == Kind::Engine);
}

/// The round in which a frame cost least: other programs on the machine only ever add.
void keepBest(Results &results, int tiles, const Result &result)
{
    const auto [known, isNew] = results.emplace(tiles, result);
    if (!isNew && result.cpu * known->second.rate < known->second.cpu * result.rate)
        known->second = result;
}

void printHead()
{
    std::printf("%-16s %5s %8s %9s %8s %12s %9s   %s\n", "", "tiles", "CPU", "memory", "threads",
                "frames/s", "all shown", "for one more tile");
    std::printf("%-16s %5s %8s %9s %8s %12s %9s   %8s %9s %8s\n", "", "", "% core", "MB", "",
                "mean/least", "ms", "% core", "MB", "threads");
    std::fflush(stdout);
}

void print(const Contestant &contestant, int tiles, double ratio)
{
    const auto found = contestant.results.find(tiles);
    if (found == contestant.results.end()) {
        std::printf("%-16s %5d cannot: it showed too little of fewer tiles, or nothing\n",
                    contestant.name.c_str(), tiles);
        return;
    }
    const Result &result = found->second;
    std::printf("%-16s %5d %8.1f %9.1f %8d %7.1f/%4.1f", contestant.name.c_str(), tiles,
                result.cpu * 100, result.memory, result.threads, result.rate, result.slowest);
    if (result.shown > 0)
        std::printf(" %9.0f", result.shown);
    else
        std::printf(" %9s", "");
    const auto &[fewest, first] = *contestant.results.begin();
    if (const int more = tiles - fewest; more > 0) {
        std::printf("   %8.2f %9.2f %8.2f", (result.cpu - first.cpu) * 100 / more,
                    (result.memory - first.memory) / more,
                    static_cast<double>(result.threads - first.threads) / more);
    }
    if (ratio > 0)
        std::printf("   %.2f times our CPU", ratio);
    std::printf("\n");
    std::fflush(stdout);
}

void runGrid(int tiles, const Options &options, std::vector<Contestant> &contestants,
             bench::DrawingCounter &screen)
{
    std::vector<std::string> arguments{
        "--count",   std::to_string(tiles),        "--canned", "--sub-size", "640x360",
        "--sub-fps", std::to_string(rateOf(tiles))};
    if (options.silent)
        arguments.push_back("--no-audio");
    const zelvaro::test::CamsimProcess cameras(arguments);
    std::string targets;
    for (const auto &camera : cameras.cameras())
        targets += (targets.empty() ? "" : ",") + camera.discovery;
    setenv("ZELVARO_DISCOVERY_TARGETS", targets.c_str(), 1);
    for (int round = 0; round < options.rounds; ++round) {
        for (Contestant &contestant : contestants) {
            if (!contestant.borne)
                continue;
            const auto result =
                measure(contestant.kind, cameras.cameras(), options.duration, screen);
            if (result)
                keepBest(contestant.results, tiles, *result);
        }
    }
    const auto &own = contestants.front().results;
    for (Contestant &contestant : contestants) {
        const auto found = contestant.results.find(tiles);
        const bool measured = found != contestant.results.end();
        const bool compare = measured && own.count(tiles) > 0 && &own != &contestant.results;
        print(contestant, tiles, compare ? found->second.cpu / own.at(tiles).cpu : 0);
        contestant.borne = contestant.kind != Kind::Windows ||
                           (measured && found->second.rate >= minRateShare * rateOf(tiles));
    }
    std::printf("\n");
}

int run(const Options &options)
{
    setenv("ZELVARO_DISCOVERY_MULTICAST", "0", 1);
    bench::DrawingCounter screen; // and a client that keeps the X server from starting over
    std::vector<Contestant> contestants{{"zelvaro engine", Kind::Engine, {}}};
    if (bench::isInstalled("ffmpeg")) {
        contestants.push_back({"ffmpeg, decoding", Kind::Decoder, {}});
        contestants.push_back({"ffmpeg, scaling", Kind::Scaler, {}});
    }
    if (bench::isInstalled("mpv"))
        contestants.push_back({"mpv windows", Kind::Windows, {}});
    std::printf("Sub streams of %s, 640x360 at %d fps (%d from %d tiles on), TCP on loopback, each "
                "in a window of its own;\n%lld s each, the cheapest of %d. Of the players only: "
                "neither the cameras nor the X server count.\n\n",
                options.silent ? "cameras without sound" : "cameras with sound", frameRate,
                rateOfMany, manyTiles, static_cast<long long>(options.duration.count()),
                options.rounds);
    printHead();
    for (const int tiles : options.grids)
        runGrid(tiles, options, contestants, screen);
    return 0;
}

Options readOptions(int argc, char **argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const auto number = [&] { return i + 1 < argc ? std::max(1, std::atoi(argv[++i])) : 1; };
        if (word == "--seconds")
            options.duration = std::chrono::seconds(number());
        else if (word == "--rounds")
            options.rounds = number();
        else if (word == "--silent")
            options.silent = true;
        else if (const int tiles = std::atoi(word.c_str()); tiles > 0)
            options.grids.push_back(tiles);
        else
            throw std::runtime_error("unknown option " + word);
    }
    if (options.grids.empty())
        options.grids = {1, 4, 16, 36, 64, 100};
    return options;
}

} // namespace

int main(int argc, char **argv)
{
    try {
        return run(readOptions(argc, argv));
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "bench_grid: %s\n", problem.what());
        return 1;
    }
}
