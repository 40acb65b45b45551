#include "platform/media/playout_delay.h"

#include <algorithm>

namespace media {

namespace {

using namespace std::chrono_literals;

constexpr auto window = 10s;
constexpr size_t maxSamples = 1200; // 120 pictures a second
// Half of what a screen shows a picture for: nobody sees that one comes so much later.
constexpr auto unseen = 8ms;
// One picture in so many may come later than that.
constexpr size_t evenPictures = 25;
constexpr auto holdStep = 2ms;
constexpr int thoughtPeriod = 8; // pictures
// The camera's clock was set, or it began anew.
constexpr auto jump = 1s;

} // namespace

void PlayoutDelay::forget()
{
    m_least.clear();
    m_samples.clear();
    m_lateness.reset();
    m_newest = 0;
}

/// The least lateness of the window, this one among them.
PlayoutDelay::Nanoseconds PlayoutDelay::noteLateness(Nanoseconds lateness,
                                                     Clock::time_point arrived)
{
    const auto isOld = [arrived](const auto &each) { return arrived - each.arrived > window; };
    while (!m_least.empty() && m_least.back().lateness >= lateness)
        m_least.pop_back();
    m_least.push_back({arrived, lateness});
    while (isOld(m_least.front()))
        m_least.pop_front();
    const Nanoseconds least = m_least.front().lateness;
    m_samples.push_back({arrived, lateness, least});
    while (isOld(m_samples.front()) || m_samples.size() > maxSamples)
        m_samples.pop_front();
    return least;
}

/// How many pictures would have followed the one before visibly too late.
size_t PlayoutDelay::unevenWith(Nanoseconds hold) const
{
    size_t uneven = 0;
    Nanoseconds before = Nanoseconds::max();
    for (const Sample &sample : m_samples) {
        const Nanoseconds shown = std::max(sample.lateness, sample.least + hold);
        uneven += shown > before && shown - before > unseen ? 1 : 0;
        before = shown;
    }
    return uneven;
}

PlayoutDelay::Nanoseconds PlayoutDelay::neededHold() const
{
    const size_t allowed = m_samples.size() / evenPictures;
    Nanoseconds hold = 0ns;
    while (hold < longestHold && unevenWith(hold) > allowed)
        hold += holdStep;
    return hold;
}

PlayoutDelay::Clock::time_point PlayoutDelay::dueOf(uint64_t time, Clock::time_point arrived)
{
    const Nanoseconds lateness = arrived.time_since_epoch() - Nanoseconds(time);
    if (m_lateness && (lateness - *m_lateness > jump || *m_lateness - lateness > jump))
        forget();
    m_lateness = lateness;
    Clock::time_point due = arrived;
    // A B frame is sent after one that is shown later; it follows that one.
    if (time > m_newest || m_samples.empty()) {
        m_newest = time;
        const Nanoseconds least = noteLateness(lateness, arrived);
        if (--m_untilNext <= 0) {
            m_untilNext = thoughtPeriod;
            m_wanted = neededHold();
        }
        m_hold += std::clamp<Nanoseconds>(m_wanted - m_hold, -step, step);
        due += std::clamp<Nanoseconds>(least + m_hold - lateness, 0ns, longestHold);
    }
    m_lastDue = std::max(due, std::min(m_lastDue, arrived + longestHold));
    return m_lastDue;
}

} // namespace media
