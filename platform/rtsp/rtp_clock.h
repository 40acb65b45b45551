#pragma once

#include <cstdint>
#include <optional>

namespace rtsp {

/**
 * Turns the RTP times of one medium into nanoseconds on the stream's time line. Not thread-safe.
 *
 * It begins at the arrival of the first unit and goes on by RTP times, over their wraps. Where they
 * cannot be believed it goes on by arrival: times that jump by more than 10 s, that go back where
 * nothing is reordered, that stand still, and that have run at another rate than told for 15 s.
 */
class RtpClock
{
public:
    /// @param rate ticks a second, at least 1
    explicit RtpClock(int rate);

    /// The time of the next unit. Called once for each.
    /// @param arrived of its first packet, ns on the stream's time line
    /// @param mayGoBack presentation order is not decoding order
    [[nodiscard]] int64_t next(uint32_t rtpTime, int64_t arrived, bool mayGoBack);

    /// The time of another moment of the same clock, as in a sender report; nullopt when it is too
    /// far off or the clock is not believed.
    [[nodiscard]] std::optional<int64_t> at(uint32_t rtpTime) const;

    /// Counts how often the clock was set anew.
    [[nodiscard]] unsigned epoch() const { return m_epoch; }

    /// What comes next is of another source: it goes on by arrival.
    void restart();

private:
    [[nodiscard]] int64_t nanoseconds(int64_t ticks) const;
    int64_t goOnByArrival(int64_t arrived);
    void measureRate(int64_t step, int64_t arrived);

    enum class Rate
    {
        Right,
        Slow,
        Fast
    };

    const int m_rate;
    bool m_started = false;
    bool m_believed = false;
    uint32_t m_lastRtp = 0;
    int64_t m_ticks = 0; ///< from the anchor to the last unit
    int64_t m_anchor = 0;
    int64_t m_last = 0;
    int64_t m_highest = 0;
    int64_t m_lastArrived = 0;
    unsigned m_epoch = 0;
    // The rate is measured over seconds, since packets come in bursts.
    int64_t m_windowBegan = 0; ///< by arrival
    int64_t m_windowSteps = 0; ///< of RTP times since then, ns
    Rate m_measured = Rate::Right;
    unsigned m_sameMeasured = 0; ///< windows in a row
    bool m_rateIsWrong = false;
};

} // namespace rtsp
