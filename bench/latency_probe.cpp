#include "bench/latency_probe.h"

#include "camsim/timecode.h"

#include <poll.h>

namespace bench {

namespace {

constexpr std::uint32_t implausible = 60'000; // milliseconds; a misread or a stale picture

void pause()
{
    poll(nullptr, 0, 1);
}

} // namespace

std::optional<Clock::time_point> LatencyProbe::waitForPicture(Clock::time_point after,
                                                              std::chrono::milliseconds deadline)
{
    const auto start = camsim::timecode::now();
    const auto sinceAfter =
        std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - after).count();
    const auto end = Clock::now() + deadline;
    while (Clock::now() < end) {
        if (const auto code = m_screen.read()) {
            // The first picture may be a key frame that the camera drew a while before.
            const auto age = camsim::timecode::elapsed(*code, start);
            if (age < 2'000U + static_cast<std::uint32_t>(sinceAfter) || age > (1U << 23))
                return Clock::now();
        }
        pause();
    }
    return std::nullopt;
}

std::vector<LatencyProbe::Sighting> LatencyProbe::watch(std::chrono::milliseconds duration)
{
    std::vector<Sighting> sightings;
    std::optional<std::uint32_t> last;
    const auto end = Clock::now() + duration;
    while (Clock::now() < end) {
        const auto code = m_screen.read();
        const auto now = camsim::timecode::now();
        if (code && code != last) {
            const auto latency = camsim::timecode::elapsed(*code, now);
            // The first code may have stood there for a while.
            if (last && latency < implausible)
                sightings.push_back({Clock::now(), static_cast<double>(latency)});
            last = code;
        }
        pause();
    }
    return sightings;
}

std::vector<double> LatencyProbe::sample(std::chrono::milliseconds duration)
{
    std::vector<double> samples;
    for (const Sighting &sighting : watch(duration))
        samples.push_back(sighting.latency);
    return samples;
}

} // namespace bench
