#include "platform/media/stream_stats.h"

#include <algorithm>
#include <limits>

namespace media {

namespace {

constexpr auto window = std::chrono::seconds(1);

} // namespace

void StreamStats::add(SteadyClock::time_point when, size_t bytes)
{
    std::lock_guard lock(m_mutex);
    forgetBefore(when - window);
    m_arrivals.push_back({when, bytes});
    m_bytes += bytes;
}

int StreamStats::frames(SteadyClock::time_point now) const
{
    std::lock_guard lock(m_mutex);
    forgetBefore(now - window);
    return static_cast<int>(m_arrivals.size());
}

int StreamStats::bits(SteadyClock::time_point now) const
{
    std::lock_guard lock(m_mutex);
    forgetBefore(now - window);
    const size_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(m_bytes * 8, most));
}

void StreamStats::clear()
{
    std::lock_guard lock(m_mutex);
    m_arrivals.clear();
    m_bytes = 0;
}

void StreamStats::forgetBefore(SteadyClock::time_point when) const
{
    while (!m_arrivals.empty() && m_arrivals.front().when <= when) {
        m_bytes -= m_arrivals.front().bytes;
        m_arrivals.pop_front();
    }
}

} // namespace media
