#include "platform/rtsp/outgoing_track.h"

#include <glib.h>

namespace rtsp {
namespace {

constexpr int64_t nanosecondsPerMicrosecond = 1000;

} // namespace

OutgoingTrack::OutgoingTrack(MediaDescription description, const PayloadFormat &format)
    : MediaTrack(std::move(description))
    , m_sender(format.payloadType, format.clockRate)
{
}

/// Over UDP the camera has to say where it listens.
bool OutgoingTrack::prepare(bool, const TransportAnswer *answer)
{
    return !answer || answer->serverPorts;
}

void OutgoingTrack::send(std::span<const uint8_t> payload, uint64_t ticks)
{
    const bool isFirst = !m_sender.hasSent();
    MediaTrack::send(false, m_sender.packet(payload, ticks, base::SteadyClock::now()));
    if (isFirst)
        sendReport();
}

base::Bytes OutgoingTrack::report()
{
    if (!m_sender.hasSent())
        return {};
    return m_sender.report(base::SteadyClock::now(), g_get_real_time() * nanosecondsPerMicrosecond);
}

} // namespace rtsp
