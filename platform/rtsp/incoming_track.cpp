#include "platform/rtsp/incoming_track.h"

#include <algorithm>

namespace rtsp {

using namespace std::chrono_literals;
using base::SteadyClock;

IncomingTrack::IncomingTrack(MediaDescription description, std::shared_ptr<StreamTimeline> timeline,
                             MediaSink &sink)
    : MediaTrack(std::move(description))
    , m_timeline(std::move(timeline))
    , m_sink(sink)
{
}

bool IncomingTrack::prepare(bool ordered, const TransportAnswer *)
{
    m_receiver = MediaReceiver::create(description(), *m_timeline, m_sink, ordered);
    return m_receiver != nullptr;
}

void IncomingTrack::started()
{
    if (ports())
        ports()->punchHoles();
}

void IncomingTrack::take(bool isRtcp, std::span<const uint8_t> data)
{
    if (!m_receiver)
        return;
    if (isRtcp) {
        m_receiver->takeRtcp(data, SteadyClock::now());
    } else {
        m_sign = true;
        m_receiver->takeRtp(data, SteadyClock::now());
    }
    armDeadline();
}

void IncomingTrack::armDeadline()
{
    const std::optional<SteadyClock::time_point> deadline = m_receiver->deadline();
    if (deadline == m_deadline)
        return;
    m_deadline = deadline;
    if (!deadline) {
        m_deadlineTimer.stop();
        return;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - SteadyClock::now());
    m_deadlineTimer.start(std::max(left, 0ms), [this] {
        m_deadline.reset();
        m_receiver->tick(SteadyClock::now());
        armDeadline();
    });
}

base::Bytes IncomingTrack::report()
{
    return m_receiver ? m_receiver->receiverReport(SteadyClock::now()) : base::Bytes();
}

} // namespace rtsp
