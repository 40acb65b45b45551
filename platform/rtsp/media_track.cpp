#include "platform/rtsp/media_track.h"

#include <algorithm>

namespace rtsp {
namespace {

using namespace std::chrono_literals;
using base::SteadyClock;

constexpr auto reportPeriod = 5s;

} // namespace

MediaTrack::MediaTrack(MediaDescription description, StreamTimeline &timeline, MediaSink &sink)
    : m_description(std::move(description))
    , m_timeline(timeline)
    , m_sink(sink)
{
}

bool MediaTrack::useChannels(NumberPair channels)
{
    m_ports.reset();
    m_channels = channels;
    m_receiver = MediaReceiver::create(m_description, m_timeline, m_sink, true);
    return m_receiver != nullptr;
}

std::optional<NumberPair> MediaTrack::openPorts(GSocketFamily family)
{
    if (!m_ports)
        m_ports = UdpPorts::open(
            family, [this](bool isRtcp, std::span<const uint8_t> data) { take(isRtcp, data); });
    return m_ports ? std::optional(m_ports->numbers()) : std::nullopt;
}

bool MediaTrack::usePorts(GInetSocketAddress *camera, const TransportAnswer &answer)
{
    m_channels.reset();
    m_receiver = MediaReceiver::create(m_description, m_timeline, m_sink, false);
    if (!m_ports || !camera || !m_receiver)
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
    take(channel != m_channels->first, data);
}

void MediaTrack::start(SendRtcp sendRtcp)
{
    m_sendRtcp = std::move(sendRtcp);
    if (m_ports)
        m_ports->punchHoles();
    m_reports.start(reportPeriod, [this] { report(); });
}

void MediaTrack::take(bool isRtcp, std::span<const uint8_t> data)
{
    if (!m_receiver)
        return;
    if (isRtcp) {
        m_receiver->takeRtcp(data, SteadyClock::now());
    } else {
        m_sign = m_hasReceived = true;
        m_receiver->takeRtp(data, SteadyClock::now());
    }
    armDeadline();
}

void MediaTrack::armDeadline()
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

void MediaTrack::report()
{
    m_reports.start(reportPeriod, [this] { report(); });
    const base::Bytes report = m_receiver->receiverReport(SteadyClock::now());
    if (m_ports)
        m_ports->sendRtcp(report);
    else if (m_channels && m_sendRtcp)
        m_sendRtcp(static_cast<uint8_t>(m_channels->second), report);
}

} // namespace rtsp
