#pragma once

#include "platform/media/frame_taker.h"

namespace media {

/// What the slice headers of an access unit say.
struct SliceFacts
{
    bool reference = false;    ///< nal_ref_idc of a slice is not 0
    bool bipredictive = false; ///< a B slice is in it
};

/// Reads the slice headers (ITU-T H.264 7.3.3) of a length-prefixed access unit; lengthSize is the
/// size of the length field in bytes, 1 to 4. Damaged input gives what was readable.
SliceFacts readSliceFacts(const uint8_t *data, size_t size, int lengthSize = 4);

/// Fills an access unit from what the parser delivered. time is the running time.
AccessUnit makeAccessUnit(GstBuffer *buffer, GstCaps *caps, GstClockTime time, uint64_t number);

} // namespace media
