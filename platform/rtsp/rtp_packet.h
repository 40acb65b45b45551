#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace rtsp {

/// An RTP packet (RFC 3550 5.1) as a view of the bytes that it came in.
struct RtpPacket
{
    uint8_t payloadType = 0;
    bool marker = false;
    uint16_t number = 0;              ///< sequence number
    uint32_t time = 0;                ///< in ticks of the payload's clock
    uint32_t source = 0;              ///< SSRC
    std::span<const uint8_t> payload; ///< without extension and padding; may be empty
};

/// nullopt when the bytes are no RTP packet.
[[nodiscard]] std::optional<RtpPacket> parseRtpPacket(std::span<const uint8_t> bytes);

/// Whether bytes that came where RTP is expected are an RTCP packet (RFC 5761 4).
[[nodiscard]] bool isRtcpPacket(std::span<const uint8_t> bytes);

} // namespace rtsp
