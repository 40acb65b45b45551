#include "platform/cammgr/probe_schedule.h"

#include <algorithm>

namespace cammgr {
namespace {

using namespace std::chrono_literals;

constexpr auto firstPause = 3s;
/// Accounts are locked after five wrong logins or more, for up to half an hour. Somebody may
/// mistype the password in the camera's own page too.
constexpr auto refusalWindow = 30min;
constexpr size_t maxRefusals = 3;
/// The user may be waiting for a camera that was just plugged in.
constexpr auto longestSilentPause = 15s;
/// The client requests a probe every 3 s or a little later: a pause of 3 s must not become one of
/// 6.
constexpr auto slack = 500ms;

} // namespace

void ProbeSchedule::record(rtsp::ProbeOutcome outcome, Time now)
{
    constexpr int enough = 8;
    m_inRow = outcome == m_remembered ? std::min(m_inRow + 1, enough) : 1;
    m_remembered = outcome;
    std::chrono::milliseconds pause = firstPause * (1 << (m_inRow - 1));
    if (outcome == rtsp::ProbeOutcome::LoginRefused) {
        m_refusals.push_back(now);
        while (m_refusals.size() > maxRefusals || m_refusals.front() + refusalWindow <= now)
            m_refusals.pop_front();
        if (m_refusals.size() == maxRefusals) {
            m_due = std::max(m_refusals.front() + refusalWindow, now + pause - slack);
            return;
        }
    } else if (outcome == rtsp::ProbeOutcome::Silent || outcome == rtsp::ProbeOutcome::NoSuchHost)
        pause = std::min<std::chrono::milliseconds>(pause, longestSilentPause);
    else
        pause = slack;
    m_due = now + pause - slack;
}

std::optional<ProbeSchedule::Time> ProbeSchedule::loginPause(Time now) const
{
    const bool paused = m_remembered == rtsp::ProbeOutcome::LoginRefused &&
                        m_refusals.size() == maxRefusals && now < m_due;
    return paused ? std::optional(m_due) : std::nullopt;
}

void ProbeSchedule::networkChanged()
{
    if (m_remembered == rtsp::ProbeOutcome::Silent ||
        m_remembered == rtsp::ProbeOutcome::NoSuchHost)
        reset();
}

void ProbeSchedule::reset()
{
    *this = {};
}

} // namespace cammgr
