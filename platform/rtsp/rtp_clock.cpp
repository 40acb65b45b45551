#include "platform/rtsp/rtp_clock.h"

#include <algorithm>

namespace rtsp {

namespace {

constexpr int64_t second = 1'000'000'000;
constexpr int64_t longestStep = 10 * second;
constexpr int64_t longestReordering = 2 * second;
constexpr int64_t shortestStep = 1000; ///< units have different times, ns

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

int64_t RtpClock::next(uint32_t rtpTime, int64_t arrived, bool mayGoBack)
{
    const int64_t ticks = static_cast<int32_t>(rtpTime - m_lastRtp);
    const int64_t step = nanoseconds(ticks);
    if (!m_started || !m_believed) {
        m_last = goOnByArrival(arrived);
        m_believed = true;
    } else if (ticks == 0) {
        m_last = goOnByArrival(arrived);
    } else if (step > longestStep || step < (mayGoBack ? -longestReordering : 0)) {
        m_last = goOnByArrival(arrived);
    } else {
        m_ticks += ticks;
        m_last = m_anchor + nanoseconds(m_ticks);
    }
    m_started = true;
    m_lastRtp = rtpTime;
    m_lastArrived = arrived;
    m_highest = std::max(m_highest, m_last);
    return m_last;
}

std::optional<int64_t> RtpClock::at(uint32_t rtpTime) const
{
    if (!m_started || !m_believed)
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
