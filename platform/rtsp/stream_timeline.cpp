#include "platform/rtsp/stream_timeline.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

namespace rtsp {

namespace {

constexpr int64_t largestShift = 500'000'000; ///< ns; more is taken for a wrong clock
constexpr int64_t shiftStep = 1'000'000;      ///< ns a piece of sound

} // namespace

int64_t StreamTimeline::sinceStart(TimePoint arrived)
{
    if (!m_start)
        m_start = arrived;
    return std::chrono::duration_cast<std::chrono::nanoseconds>(arrived - *m_start).count();
}

void StreamTimeline::setWallClock(Medium medium, std::optional<int64_t> atStart)
{
    (medium == Medium::Video ? m_video : m_audio) = atStart;
}

std::optional<int64_t> StreamTimeline::wallClock(Medium medium) const
{
    return medium == Medium::Video ? m_video : m_audio;
}

int64_t StreamTimeline::nextAudioShift()
{
    // Without reports the last shift stays: it was right, and going back would move the sound
    // twice.
    if (!m_video || !m_audio)
        return m_shift;
    const int64_t told = *m_audio - *m_video;
    const int64_t target = std::abs(told) < largestShift ? told : 0;
    m_shift += std::clamp(target - m_shift, -shiftStep, shiftStep);
    return m_shift;
}

} // namespace rtsp
