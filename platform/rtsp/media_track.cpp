#include "platform/rtsp/media_track.h"

#include <algorithm>

namespace rtsp {
namespace {

using namespace std::chrono_literals;

constexpr auto reportPeriod = 5s;

} // namespace

bool MediaTrack::useChannels(NumberPair channels)
{
    m_ports.reset();
    m_channels = channels;
    return prepare(true, nullptr);
}

std::optional<NumberPair> MediaTrack::openPorts(GSocketFamily family)
{
    if (!m_ports)
        m_ports = UdpPorts::open(
            family, [this](bool isRtcp, std::span<const uint8_t> data) { received(isRtcp, data); });
    return m_ports ? std::optional(m_ports->numbers()) : std::nullopt;
}

bool MediaTrack::usePorts(GInetSocketAddress *camera, const TransportAnswer &answer)
{
    m_channels.reset();
    if (!prepare(false, &answer) || !m_ports || !camera)
        return false;
    m_ports->setPeer(camera, answer.source, answer.serverPorts);
    return true;
}

bool MediaTrack::describes(std::span<const uint8_t> packet) const
{
    constexpr uint8_t typeMask = 0x7f; // the other bit is the marker
    return packet.size() > 1 &&
           std::any_of(m_description.formats.begin(), m_description.formats.end(),
                       [type = packet[1] & typeMask](const PayloadFormat &format) {
                           return format.payloadType == type;
                       });
}

void MediaTrack::takePacket(uint8_t channel, std::span<const uint8_t> data)
{
    received(channel != m_channels->first, data);
}

void MediaTrack::received(bool isRtcp, std::span<const uint8_t> data)
{
    m_hasReceived = m_hasReceived || !isRtcp;
    take(isRtcp, data);
}

void MediaTrack::start(SendInterleaved send)
{
    m_send = std::move(send);
    started();
    m_reports.start(reportPeriod, [this] { sendReport(); });
}

void MediaTrack::sendReport()
{
    m_reports.start(reportPeriod, [this] { sendReport(); });
    const base::Bytes bytes = report();
    if (!bytes.empty())
        send(true, bytes);
}

void MediaTrack::send(bool isRtcp, std::span<const uint8_t> data)
{
    if (m_ports && isRtcp)
        m_ports->sendRtcp(data);
    else if (m_ports)
        m_ports->sendRtp(data);
    else if (m_channels && m_send)
        m_send(static_cast<uint8_t>(isRtcp ? m_channels->second : m_channels->first), data);
}

} // namespace rtsp
