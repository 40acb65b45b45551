#include "platform/cammgr/playout.h"

#include <utility>

namespace cammgr {

namespace {

using namespace std::chrono_literals;

// Frames of a camera that sends more than a screen can show are not kept.
constexpr size_t maxHeld = 64;

} // namespace

void Playout::take(media::AccessUnit unit)
{
    unit.held = m_delay.dueOf(unit.time, unit.arrived) - unit.arrived;
    m_held.push_back(std::move(unit));
    showDue();
}

void Playout::showDue()
{
    // Timers count whole milliseconds: sooner than one is now.
    const auto soon = media::SteadyClock::now() + 1ms;
    while (!m_held.empty() && (m_held.front().due() <= soon || m_held.size() > maxHeld)) {
        const media::AccessUnit unit = std::move(m_held.front());
        m_held.pop_front();
        m_show(unit);
    }
    if (m_held.empty() || m_timer.isActive())
        return;
    const auto wait = m_held.front().due() - media::SteadyClock::now();
    m_timer.start(std::chrono::duration_cast<std::chrono::milliseconds>(wait),
                  [this] { showDue(); });
}

} // namespace cammgr
