#include "platform/rtsp/rtp_packet.h"

#include "platform/rtsp/byte_order.h"

namespace rtsp {

namespace {

constexpr std::size_t headerSize = 12;
constexpr uint8_t firstRtcpType = 200; ///< sender report
constexpr uint8_t lastRtcpType = 207;  ///< extended report

bool hasVersion(std::span<const uint8_t> bytes)
{
    return !bytes.empty() && bytes[0] >> 6 == 2;
}

} // namespace

std::optional<RtpPacket> parseRtpPacket(std::span<const uint8_t> bytes)
{
    if (bytes.size() < headerSize || !hasVersion(bytes))
        return std::nullopt;
    RtpPacket packet;
    packet.marker = (bytes[1] & 0x80) != 0;
    packet.payloadType = bytes[1] & 0x7f;
    packet.number = read16(bytes, 2);
    packet.time = read32(bytes, 4);
    packet.source = read32(bytes, 8);

    std::size_t begin = headerSize + std::size_t{4} * (bytes[0] & 0x0f);
    if ((bytes[0] & 0x10) != 0) {
        if (bytes.size() < begin + 4)
            return std::nullopt;
        begin += 4 + std::size_t{4} * read16(bytes, begin + 2);
    }
    if (bytes.size() < begin)
        return std::nullopt;
    packet.payload = bytes.subspan(begin);
    // A padding that cannot be is a flag set by mistake.
    if ((bytes[0] & 0x20) != 0 && !packet.payload.empty() &&
        packet.payload.back() <= packet.payload.size())
        packet.payload = packet.payload.first(packet.payload.size() - packet.payload.back());
    return packet;
}

bool isRtcpPacket(std::span<const uint8_t> bytes)
{
    return bytes.size() >= 4 && hasVersion(bytes) && bytes[1] >= firstRtcpType &&
           bytes[1] <= lastRtcpType;
}

} // namespace rtsp
