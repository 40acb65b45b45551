#pragma once

#include "platform/media/frame_taker.h"

namespace media {

/// Pushes access units into an element on the caller's own thread, in the place of a source
/// element and its thread. One thread at a time.
class PadFeed
{
public:
    /// Connects to the element's sink pad; false when that is not possible.
    bool connect(GstElement *element);
    void disconnect();
    GstFlowReturn push(const AccessUnit &unit);
    /// Makes the element give what it still holds back.
    void drain();

private:
    base::GObjectPtr<GstPad> m_pad;
    CapsRef m_caps;
};

} // namespace media
