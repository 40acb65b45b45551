#pragma once

#include "platform/base/timer.h"
#include "platform/rtsp/media_receiver.h"
#include "platform/rtsp/session_description.h"
#include "platform/rtsp/udp_ports.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace rtsp {

/**
 * One medium of a stream: the way its packets come, what is made of them, and the reports that go
 * back every 5 s (RFC 3550 6.2). Loop thread.
 */
class MediaTrack
{
public:
    using SendRtcp = std::function<void(uint8_t channel, std::span<const uint8_t> data)>;
    using PacketSeen = std::function<void()>;

    MediaTrack(MediaDescription description, StreamTimeline &timeline, MediaSink &sink);

    const MediaDescription &description() const { return m_description; }
    bool isVideo() const { return m_description.kind == MediaKind::Video; }

    /// The medium comes interleaved. False when it cannot be played.
    bool useChannels(NumberPair channels);
    /// Opens ports for the medium to come over UDP, or keeps the open ones; nullopt when the system
    /// has none.
    std::optional<NumberPair> openPorts(GSocketFamily family);
    /// The camera chose UDP. False when the medium cannot be played.
    bool usePorts(GInetSocketAddress *camera, const TransportAnswer &answer);

    /// Whether the medium comes on that channel.
    bool usesChannel(uint8_t channel) const
    {
        return m_channels && (channel == m_channels->first || channel == m_channels->second);
    }
    /// Whether an RTP packet is of a payload type of this medium.
    bool describes(std::span<const uint8_t> packet) const;
    /// Where the camera does not keep to what it has answered.
    void moveTo(uint8_t channel) { m_channels = NumberPair(channel, channel + 1); }
    bool isInterleaved() const { return m_channels.has_value(); }
    /// A packet on a channel of this medium.
    void takePacket(uint8_t channel, std::span<const uint8_t> data);

    /// PLAY is about to be asked for.
    void start(SendRtcp sendRtcp);
    /// A packet of this medium has come since the last call.
    bool takeSign() { return std::exchange(m_sign, false); }
    bool hasReceived() const { return m_hasReceived; }
    MediaStatistics statistics() const
    {
        return m_receiver ? m_receiver->statistics() : MediaStatistics();
    }
    bool saidGoodbye() const { return m_receiver && m_receiver->saidGoodbye(); }

private:
    void take(bool isRtcp, std::span<const uint8_t> data);
    void armDeadline();
    void report();

    const MediaDescription m_description;
    StreamTimeline &m_timeline;
    MediaSink &m_sink;
    std::unique_ptr<MediaReceiver> m_receiver;
    std::optional<NumberPair> m_channels;
    std::unique_ptr<UdpPorts> m_ports;
    SendRtcp m_sendRtcp;
    base::Timer m_reports;
    base::Timer m_deadlineTimer;
    std::optional<base::SteadyClock::time_point> m_deadline; ///< of the timer that runs
    bool m_sign = false;
    bool m_hasReceived = false;
};

} // namespace rtsp
