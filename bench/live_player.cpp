#include "bench/live_player.h"

#include <algorithm>
#include <cstdlib>

namespace bench {

std::vector<Player> livePlayers(const zelvaro::test::SimulatedCamera &camera, int width, int height)
{
    const std::string url = camera.urlWithLogin(camera.subUrl);
    const Rectangle place{0, 0, width, height};
    std::vector<Player> all;
    all.push_back({"zelvaro engine", enginePlayer({camera}, {place}), true});
    if (isInstalled("mpv"))
        all.push_back({"mpv, low latency", mpv(url, place)});
    if (isInstalled("ffplay"))
        all.push_back({"ffplay, tuned", ffplay(url, place)});
    return all;
}

double milliseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

Clock::time_point playMoment(const Player &player, MeasuredProcess &process)
{
    if (!player.tellsPlay)
        return process.started();
    const std::string line = process.readLine(std::chrono::seconds(20));
    const long long us =
        std::strtoll(line.c_str() + std::min<std::size_t>(line.size(), 5), nullptr, 10);
    return Clock::time_point(std::chrono::microseconds(us));
}

} // namespace bench
