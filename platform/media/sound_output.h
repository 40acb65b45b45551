#pragma once

#include "platform/media/gst_ref.h"

namespace media {

/// The element that plays sound on this system, open and not yet in a pipeline; null when there is
/// no sound device. One source per system. May take some hundred ms: on a media worker.
GstElement *makeSoundSink();

} // namespace media
