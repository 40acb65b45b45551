#pragma once

#include "platform/media/gst_ref.h"

namespace media {

/// Makes the decoder for a stream with these caps, not yet in a pipeline: on the GPU when that is
/// allowed, there is one and the picture is large enough to gain by it, else in software. Null
/// when no decoder is installed.
GstElement *makeDecoder(GstCaps *caps, bool allowHardware, bool &isHardware);

/// The same in software, on one thread, for single pictures.
GstElement *makeStillDecoder(GstCaps *caps);

} // namespace media
