#pragma once

#include "platform/media/gst_ref.h"

#include <string>

namespace media {

/// The chain of elements that decodes camera audio with these caps, in the notation of
/// gst_parse_launch; empty when it cannot be decoded.
std::string audioDecoderFor(GstCaps *caps);

/// The chain that turns camera audio with these caps into what an MP4 file holds: AAC as it came,
/// all else encoded as AAC. Empty when that is not possible.
std::string audioForMp4(GstCaps *caps);

/// 20 ms of silence as a camera with these caps would send it; empty for codecs that have no fixed
/// code for silence.
[[nodiscard]] BufferRef silentPiece(GstCaps *caps);

} // namespace media
