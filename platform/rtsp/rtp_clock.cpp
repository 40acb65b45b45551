#include "platform/rtsp/rtp_clock.h"

#include <algorithm>

namespace rtsp {

namespace {

constexpr int64_t second = 1'000'000'000;
constexpr int64_t longestStep = 10 * second;
constexpr int64_t longestReordering = 2 * second;
constexpr int64_t shortestStep = 1000; ///< units have different times, ns
constexpr int64_t rateWindow = 5 * second;
constexpr unsigned wrongWindows = 3; ///< a burst after a stall takes two

} // namespace

RtpClock::RtpClock(int rate) : m_rate(rate) {}

int64_t RtpClock::nanoseconds(int64_t ticks) const
{
    return ticks / m_rate * second + ticks % m_rate * second / m_rate;
}

int64_t RtpClock::goOnByArrival(int64_t arrived)
{
    ++m_epoch;
    m_anchor = m_started ? m_highest + std::max(arrived - m_lastArrived, shortestStep) : arrived;
    m_ticks = 0;
    return m_anchor;
}

/// Judges the rate of RTP times by arrival.
void RtpClock::measureRate(int64_t step, int64_t arrived)
{
    if (!m_started || step > longestStep || step < -longestStep) {
        m_windowBegan = arrived;
        m_windowSteps = 0;
        return;
    }
    m_windowSteps += step;
    const int64_t passed = arrived - m_windowBegan;
    if (passed < rateWindow)
        return;
    Rate measured = Rate::Right;
    if (m_windowSteps > passed + passed / 2)
        measured = Rate::Fast;
    else if (m_windowSteps < passed - passed / 3)
        measured = Rate::Slow;
    m_sameMeasured = measured == m_measured ? m_sameMeasured + 1 : 1;
    m_measured = measured;
    if (measured == Rate::Right)
        m_rateIsWrong = false;
    else if (m_sameMeasured >= wrongWindows)
        m_rateIsWrong = true;
    m_windowBegan = arrived;
    m_windowSteps = 0;
}

int64_t RtpClock::next(uint32_t rtpTime, int64_t arrived, bool mayGoBack)
{
    const int64_t ticks = static_cast<int32_t>(rtpTime - m_lastRtp);
    const int64_t step = nanoseconds(ticks);
    measureRate(step, arrived);
    if (!m_started || !m_believed) {
        m_last = goOnByArrival(arrived);
        m_believed = true;
    } else if (m_rateIsWrong) {
        m_last = goOnByArrival(arrived);
    } else if (ticks == 0) {
        m_last = std::max(m_highest + shortestStep, m_last + (arrived - m_lastArrived));
    } else if (step > longestStep || step < (mayGoBack ? -longestReordering : 0)) {
        m_last = goOnByArrival(arrived);
    } else {
        m_ticks += ticks;
        m_last = m_anchor + nanoseconds(m_ticks);
        // After a while in which it stood still the camera's clock may catch up, or go on from
        // there.
        if (!mayGoBack && m_last <= m_highest)
            m_last = goOnByArrival(arrived);
    }
    m_started = true;
    m_lastRtp = rtpTime;
    m_lastArrived = arrived;
    m_highest = std::max(m_highest, m_last);
    return m_last;
}

std::optional<int64_t> RtpClock::at(uint32_t rtpTime) const
{
    if (!m_started || !m_believed || m_rateIsWrong)
        return std::nullopt;
    const int64_t step = nanoseconds(static_cast<int32_t>(rtpTime - m_lastRtp));
    if (step > longestStep || step < -longestStep)
        return std::nullopt;
    return m_last + step;
}

void RtpClock::restart()
{
    m_believed = false;
}

} // namespace rtsp
