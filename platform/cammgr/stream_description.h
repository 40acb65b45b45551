#pragma once

#include <gst/gst.h>

namespace cammgr {

/// The RTP encoding name of a stream's "application/x-rtp" structure: the one that the description
/// maps to its payload type, else that of the static types, which need not be mapped (RFC 3551 6).
/// Null when there is none; lives as long as the structure.
const char *encodingNameOf(const GstStructure *format);

} // namespace cammgr
