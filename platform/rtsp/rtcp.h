#pragma once

#include "platform/base/access_unit.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace rtsp {

/// What a sender says of its clocks (RFC 3550 6.4.1).
struct SenderReport
{
    uint32_t source = 0;
    uint64_t ntpTime = 0; ///< seconds since 1900, 32 bits before and 32 after the point
    uint32_t rtpTime = 0; ///< the same moment on the clock of the medium
};

/// What is of use in a compound RTCP packet.
struct RtcpNews
{
    std::optional<SenderReport> report; ///< the last one
    std::vector<uint32_t> goodbyes;     ///< sources that have ended (RFC 3550 6.6)
};

/// What we call ourselves in reports (CNAME): tells nothing of the user.
inline constexpr std::string_view ownName = "zelvaro";

/// Reads up to the first packet that is wrong.
[[nodiscard]] RtcpNews parseRtcp(std::span<const uint8_t> bytes);

/// How a source is received (RFC 3550 6.4.1).
struct ReportBlock
{
    uint32_t source = 0;
    uint8_t fractionLost = 0;      ///< of 256, since the last report
    int32_t lost = 0;              ///< in all; 24 bits are sent
    uint32_t highestNumber = 0;    ///< with the count of wraps above 16 bits
    uint32_t jitter = 0;           ///< ticks
    uint32_t lastReport = 0;       ///< the middle 32 bits of the last SenderReport::ntpTime
    uint32_t delaySinceReport = 0; ///< 1/65536 s
};

/// A receiver report, with a block where there is one, and a source description with the name.
[[nodiscard]] base::Bytes makeReceiverReport(uint32_t ownSource, std::string_view name,
                                             const std::optional<ReportBlock> &block);

/// A sender report without blocks, and a source description with the name.
/// @param bytes of payload in those packets
[[nodiscard]] base::Bytes makeSenderReport(const SenderReport &report, std::string_view name,
                                           uint32_t packets, uint32_t bytes);

} // namespace rtsp
