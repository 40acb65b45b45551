#pragma once

#include <gst/sdp/gstsdpmessage.h>

namespace cammgr {

/// What a camera's session description (RFC 4566) offers of that which can be shown and heard.
struct OfferedMedia
{
    bool hasVideo = false; ///< H.264
    bool hasAudio = false; ///< a kind that findRtpAudio knows
};

/// Reads a description that was parsed. Media that the camera only takes, its back channel, do not
/// count.
OfferedMedia readOfferedMedia(const GstSDPMessage *description);

/// The RTP encoding name of a stream's "application/x-rtp" structure: the one that the description
/// maps to its payload type, else that of the static types, which need not be mapped (RFC 3551 6).
/// Null when there is none; lives as long as the structure.
const char *encodingNameOf(const GstStructure *format);

/// Whether an RTP encoding name is that of H.264, whatever its case (RFC 6184). Null is none.
bool isH264(const char *encoding);

} // namespace cammgr
