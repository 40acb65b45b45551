#pragma once

#include "platform/base/access_unit.h"
#include "platform/base/timer.h"
#include "platform/rtsp/session_description.h"
#include "platform/rtsp/udp_ports.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace rtsp {

/**
 * One medium of a session: the way its packets go, inside the RTSP connection or over UDP, and the
 * reports every 5 s (RFC 3550 6.2). Loop thread.
 */
class MediaTrack
{
public:
    using SendInterleaved = std::function<void(uint8_t channel, std::span<const uint8_t> data)>;

    virtual ~MediaTrack() = default;
    MediaTrack(const MediaTrack &) = delete;
    MediaTrack &operator=(const MediaTrack &) = delete;

    const MediaDescription &description() const { return m_description; }

    /// The medium goes interleaved. False when it cannot be dealt with.
    bool useChannels(NumberPair channels);
    /// Opens ports for the medium to go over UDP, or keeps the open ones; nullopt when the system
    /// has none.
    std::optional<NumberPair> openPorts(GSocketFamily family);
    /// The camera chose UDP. False when the medium cannot be dealt with.
    bool usePorts(GInetSocketAddress *camera, const TransportAnswer &answer);

    /// Whether the medium goes on that channel.
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
    void start(SendInterleaved send);
    /// An RTP packet of this medium has come.
    bool hasReceived() const { return m_hasReceived; }

protected:
    explicit MediaTrack(MediaDescription description) : m_description(std::move(description)) {}

    void send(bool isRtcp, std::span<const uint8_t> data);
    void sendReport();
    UdpPorts *ports() const { return m_ports.get(); }

private:
    /// A transport was chosen, perhaps again. ordered: packets cannot overtake each other.
    virtual bool prepare(bool ordered, const TransportAnswer *answer) = 0;
    virtual void started() {}
    virtual void take(bool isRtcp, std::span<const uint8_t> data) = 0;
    /// A compound RTCP packet; empty for none.
    virtual base::Bytes report() = 0;

    void received(bool isRtcp, std::span<const uint8_t> data);

    const MediaDescription m_description;
    std::optional<NumberPair> m_channels;
    std::unique_ptr<UdpPorts> m_ports;
    SendInterleaved m_send;
    base::Timer m_reports;
    bool m_hasReceived = false;
};

using MediaTracks = std::vector<std::unique_ptr<MediaTrack>>;

} // namespace rtsp
