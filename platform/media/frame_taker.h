#pragma once

#include "platform/media/gst_ref.h"

#include <chrono>
#include <cstdint>

namespace media {

using SteadyClock = std::chrono::steady_clock;

/// One frame of the camera as received: H.264, one access unit, length-prefixed ("avc").
struct AccessUnit
{
    BufferRef buffer;
    CapsRef caps;              ///< holds the parameter sets; another object when they changed
    uint64_t number = 0;       ///< counts from 1 within a stream
    GstClockTime time = 0;     ///< presentation time since the start of the stream, ns
    bool key = false;          ///< decoding can start here
    bool reference = false;    ///< other frames are predicted from this one
    bool bipredictive = false; ///< holds B slices: presentation order is not decoding order
    SteadyClock::time_point arrived;
    SteadyClock::duration held{}; ///< by how much it is shown later, so that all come evenly

    SteadyClock::time_point due() const { return arrived + held; }
    gsize size() const { return gst_buffer_get_size(buffer.get()); }
};

/// A piece of the camera's audio as it came.
struct AudioUnit
{
    BufferRef buffer;
    CapsRef caps;
    GstClockTime time = 0; ///< as for AccessUnit
};

/// Receives the frames of a stream: view, recorder and the memory for late starters.
class FrameTaker
{
public:
    virtual ~FrameTaker() = default;
    /// Called on the thread that receives the stream; must not wait.
    virtual void takeFrame(const AccessUnit &unit) = 0;
    virtual void takeAudio(const AudioUnit &) {}
};

} // namespace media
