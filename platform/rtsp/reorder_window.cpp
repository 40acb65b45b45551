#include "platform/rtsp/reorder_window.h"

#include <algorithm>
#include <utility>

namespace rtsp {

namespace {

using std::chrono::milliseconds;

constexpr base::SteadyClock::duration shortestWait = milliseconds(20);
constexpr base::SteadyClock::duration longestWait = milliseconds(60);
// As in RFC 3550 A.1: what is further off is another start.
constexpr int maxAhead = 3000;
constexpr int maxBehind = 512;

} // namespace

void ReorderWindow::take(uint16_t number, std::span<const uint8_t> packet, TimePoint arrived)
{
    if (!m_started)
        start(number);
    const int ahead = static_cast<int16_t>(number - m_next);
    if (ahead >= maxAhead || ahead < -maxBehind) {
        if (!isNewStart(number))
            return;
    } else if (ahead < 0) {
        takeLate(number);
        return;
    }
    m_newStart.reset();
    while (m_held > 0 && static_cast<int16_t>(number - m_next) >= static_cast<int>(capacity))
        giveUpNext();
    const int gap = static_cast<int16_t>(number - m_next);
    if (gap >= static_cast<int>(capacity)) {
        m_missing += static_cast<unsigned>(gap);
        m_next = number;
    }
    if (number != m_next) {
        hold(number, packet, arrived);
        return;
    }
    if (m_held > 0) {
        ++m_reordered;
        noteLateness(arrived - m_heldSince);
    }
    passOn(packet, arrived);
    releaseNext();
}

void ReorderWindow::start(uint16_t number)
{
    m_started = true;
    m_next = number;
}

// One stray packet does not end the order: two that follow each other do (RFC 3550 A.1).
bool ReorderWindow::isNewStart(uint16_t number)
{
    if (m_newStart != number) {
        m_newStart = static_cast<uint16_t>(number + 1);
        ++m_dropped;
        return false;
    }
    while (m_held > 0)
        giveUpNext();
    ++m_missing; // the stray one, at least
    m_next = number;
    return true;
}

void ReorderWindow::takeLate(uint16_t number)
{
    ++m_dropped;
    // Not a duplicate, but one that was given up too soon.
    if (static_cast<uint16_t>(m_lastGivenUp - number) < m_lastGap)
        m_wait = longestWait;
}

void ReorderWindow::passOn(std::span<const uint8_t> packet, TimePoint arrived)
{
    ++m_next;
    m_client.onOrdered(packet, arrived, std::exchange(m_missing, 0));
}

void ReorderWindow::hold(uint16_t number, std::span<const uint8_t> packet, TimePoint arrived)
{
    Slot &slot = slotOf(number);
    if (slot.used) {
        ++m_dropped;
        return;
    }
    slot.packet.assign(packet.begin(), packet.end());
    slot.arrived = arrived;
    slot.used = true;
    if (m_held++ == 0)
        m_heldSince = arrived;
}

/// Passes on what is held and is next now.
void ReorderWindow::releaseNext()
{
    while (m_held > 0 && slotOf(m_next).used) {
        Slot &slot = slotOf(m_next);
        slot.used = false;
        --m_held;
        passOn(slot.packet, slot.arrived);
    }
    if (m_held == 0)
        return;
    // The wait for the next gap began when something behind it came.
    uint16_t number = m_next;
    while (!slotOf(number).used)
        ++number;
    m_heldSince = slotOf(number).arrived;
}

void ReorderWindow::giveUpNext()
{
    const uint16_t first = m_next;
    while (!slotOf(m_next).used)
        ++m_next;
    m_lastGap = static_cast<uint16_t>(m_next - first);
    m_lastGivenUp = static_cast<uint16_t>(m_next - 1);
    m_missing += m_lastGap;
    releaseNext();
}

void ReorderWindow::noteLateness(base::SteadyClock::duration late)
{
    const base::SteadyClock::duration needed = std::clamp(2 * late, shortestWait, longestWait);
    m_wait = needed > m_wait ? needed : m_wait - (m_wait - needed) / 16;
}

std::optional<ReorderWindow::TimePoint> ReorderWindow::deadline() const
{
    if (m_held == 0)
        return std::nullopt;
    return m_heldSince + m_wait;
}

void ReorderWindow::tick(TimePoint now)
{
    while (m_held > 0 && now >= m_heldSince + m_wait)
        giveUpNext();
}

void ReorderWindow::restart()
{
    for (Slot &slot : m_slots)
        slot.used = false;
    m_held = 0;
    m_started = false;
    m_newStart.reset();
    m_missing = 0;
    m_lastGap = 0;
}

} // namespace rtsp
