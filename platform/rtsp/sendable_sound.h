#pragma once

#include "platform/base/access_unit.h"
#include "platform/rtsp/session_description.h"

#include <cstdint>
#include <optional>
#include <span>

namespace rtsp {

/// What a camera takes on its back channel.
struct SendableSound
{
    const MediaDescription *media = nullptr; ///< of the description
    const PayloadFormat *format = nullptr;   ///< one of the medium's
};

/// The sound of a camera's back channels that can be sent: G.711, which ONVIF asks every camera to
/// take (Streaming 5.3), before G.726 and AAC-LC (RFC 3640, AAC-hbr). nullopt when there is none.
[[nodiscard]] std::optional<SendableSound> chooseSendable(const SessionDescription &description);

/// One piece of sound as the payload of one packet: as it is, and AAC with its header (RFC 3640
/// 3.3.6). Empty when it is too long for that.
[[nodiscard]] base::Bytes payloadOf(const PayloadFormat &format, std::span<const uint8_t> sound);

} // namespace rtsp
