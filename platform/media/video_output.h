#pragma once

#include "platform/media/gst_ref.h"

#include <cstdint>

namespace media {

// What differs by system in drawing and decoding. One source per system.

/// The element that draws on a native window, not yet in a pipeline; null when there is none. It
/// draws what it gets at once and takes no input events from the window.
GstElement *makeWindowSink(uintptr_t window);

/// A decoder on the GPU that is ready to be used, or null when the machine has none.
GstElement *makeHardwareDecoder();

} // namespace media
