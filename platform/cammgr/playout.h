#pragma once

#include "platform/base/timer.h"
#include "platform/media/frame_taker.h"
#include "platform/media/playout_delay.h"

#include <deque>
#include <functional>

namespace cammgr {

/// Hands the frames of a stream on when they are due (media::PlayoutDelay), in their order. Loop
/// thread, also for its end.
class Playout
{
public:
    /// show gets each frame, and by how much it was held back.
    explicit Playout(std::function<void(const media::AccessUnit &)> show) : m_show(std::move(show))
    {
    }

    void take(media::AccessUnit unit);
    /// See media::PlayoutDelay::hold().
    std::chrono::nanoseconds hold() const { return m_delay.hold(); }

private:
    void showDue();

    const std::function<void(const media::AccessUnit &)> m_show;
    media::PlayoutDelay m_delay;
    std::deque<media::AccessUnit> m_held;
    base::Timer m_timer;
};

} // namespace cammgr
