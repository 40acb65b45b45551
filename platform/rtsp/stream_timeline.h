#pragma once

#include "platform/base/access_unit.h"

#include <cstdint>
#include <optional>

namespace rtsp {

/**
 * The time line that the media of one stream share: 0 is the arrival of the first packet of any of
 * them. Not thread-safe.
 *
 * What cameras say about the wall clock (sender reports) is used for the offset between sound and
 * picture only, as far as it is plausible, and slowly: cameras stamp their media with clocks that
 * differ by seconds. The picture is never moved.
 */
class StreamTimeline
{
public:
    using TimePoint = base::SteadyClock::time_point;

    enum class Medium
    {
        Video,
        Audio
    };

    /// Nanoseconds since the start, which is this arrival when it is the first.
    [[nodiscard]] int64_t sinceStart(TimePoint arrived);

    /// The camera's wall clock at 0 of the time line, as told for one medium, ns since 1900;
    /// nullopt when it is not known any more.
    void setWallClock(Medium medium, std::optional<int64_t> atStart);
    [[nodiscard]] std::optional<int64_t> wallClock(Medium medium) const;

    /// What is to be added to the time of the next piece of sound, ns: at most 1 ms more or less
    /// than at the call before.
    [[nodiscard]] int64_t nextAudioShift();

private:
    std::optional<TimePoint> m_start;
    std::optional<int64_t> m_video;
    std::optional<int64_t> m_audio;
    int64_t m_shift = 0;
};

} // namespace rtsp
