#pragma once

#include "platform/rtsp/session_description.h"

#include <optional>

namespace rtsp {

/// How a medium is packed into RTP.
enum class PayloadKind
{
    H264,       ///< RFC 6184
    H265,       ///< RFC 7798
    Jpeg,       ///< RFC 2435
    Pcmu,       ///< RFC 3551 4.5.14
    Pcma,       ///< RFC 3551 4.5.14
    G726,       ///< RFC 3551 4.5.4, in both packings
    L16,        ///< RFC 3551 4.5.11
    Opus,       ///< RFC 7587
    AacGeneric, ///< RFC 3640
    AacLatm     ///< RFC 6416
};

/// What a format is, by its encoding name; nullopt when it cannot be received here.
[[nodiscard]] std::optional<PayloadKind> payloadKindOf(MediaKind kind, const PayloadFormat &format);

/// Ticks a second of its RTP clock: as told, else as usual.
[[nodiscard]] int clockRateOf(PayloadKind kind, const PayloadFormat &format);

/// Bits of a sample of a format that is G726: 2 to 5.
[[nodiscard]] int bitsOfG726(const PayloadFormat &format);

} // namespace rtsp
