#pragma once

#include "platform/media/frame_taker.h"

#include <deque>
#include <mutex>

namespace media {

/// Frames and bits that arrived within the last second. Callable from any thread.
class StreamStats : public FrameTaker
{
public:
    void takeFrame(const AccessUnit &unit) override { add(unit.arrived, unit.size()); }
    void add(SteadyClock::time_point when, size_t bytes);

    int frames(SteadyClock::time_point now = SteadyClock::now()) const;
    int bits(SteadyClock::time_point now = SteadyClock::now()) const;
    void clear();

private:
    struct Arrival
    {
        SteadyClock::time_point when;
        size_t bytes;
    };
    void forgetBefore(SteadyClock::time_point when) const;

    mutable std::mutex m_mutex; ///< protects everything below
    mutable std::deque<Arrival> m_arrivals;
    mutable size_t m_bytes = 0;
};

} // namespace media
