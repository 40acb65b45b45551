#pragma once

#include "platform/rtsp/rtsp_probe.h"

#include <chrono>
#include <deque>
#include <optional>

namespace cammgr {

/**
 * When to probe a camera again and when to answer from memory. A refused login is tried three times
 * in half an hour at most, so that no camera locks the account; a host that does not answer costs
 * less and less. A camera that answers in any other way is probed each time.
 */
class ProbeSchedule
{
public:
    using Time = std::chrono::steady_clock::time_point;

    bool isDue(Time now) const { return now >= m_due; }
    /// What the last real probe found; Silent before the first.
    rtsp::ProbeOutcome remembered() const { return m_remembered; }
    void record(rtsp::ProbeOutcome outcome, Time now);

    /// Until when the login is not tried because it was refused too often; nullopt when it may be.
    std::optional<Time> loginPause(Time now) const;

    /// The camera accepted the login: what it refused before no longer counts.
    void loginAccepted() { m_refusals.clear(); }
    /// The user wants the camera now: it is probed once more, whatever the pause.
    void userAsked() { m_due = {}; }
    /// The network changed: a host that was silent may answer now. A refused login stays refused.
    void networkChanged();
    /// Forgets everything: the camera is at another address now.
    void reset();

private:
    Time m_due{};
    rtsp::ProbeOutcome m_remembered = rtsp::ProbeOutcome::Silent;
    std::deque<Time> m_refusals; ///< of the login, within the last half hour; the last three
    int m_inRow = 0;             ///< how often the remembered outcome came in a row
};

} // namespace cammgr
