#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

namespace media {

/**
 * Tells when each picture of a live stream is due, so that pictures that come in bursts are shown
 * evenly. They are held back by as little as would have made nearly all pictures of the last 10 s
 * follow each other evenly, at most longestHold; on a quiet network that is nothing. Where a
 * picture ought to be is told by the one of the last 10 s that took the least time: a delay of the
 * network that stays is no jitter, and a picture that is late is due at once, so that nothing adds
 * up. Not for several threads.
 */
class PlayoutDelay
{
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::chrono::milliseconds longestHold{120};
    /// The hold changes by this much at most from one picture to the next.
    static constexpr std::chrono::milliseconds step{2};

    /// Pictures in decoding order. time: of presentation, ns. Never before arrived, nor before the
    /// picture that came before.
    Clock::time_point dueOf(uint64_t time, Clock::time_point arrived);

    /// What pictures without any lateness are held back by.
    std::chrono::nanoseconds hold() const { return m_hold; }

private:
    using Nanoseconds = std::chrono::nanoseconds;

    struct Least
    {
        Clock::time_point arrived;
        Nanoseconds lateness;
    };
    struct Sample
    {
        Clock::time_point arrived;
        Nanoseconds lateness;
        Nanoseconds least; ///< of the 10 s before
    };

    void forget();
    Nanoseconds noteLateness(Nanoseconds lateness, Clock::time_point arrived);
    Nanoseconds neededHold() const;
    size_t unevenWith(Nanoseconds hold) const;

    std::deque<Least> m_least;             ///< candidates for the least lateness, growing
    std::deque<Sample> m_samples;          ///< of the last 10 s
    int m_untilNext = 0;                   ///< pictures until the hold is thought over
    Nanoseconds m_wanted{};                ///< where the hold is going
    std::optional<Nanoseconds> m_lateness; ///< of the last picture
    uint64_t m_newest = 0;                 ///< time of the picture that is shown last
    Nanoseconds m_hold{};
    Clock::time_point m_lastDue;
};

} // namespace media
