#pragma once

#include "platform/cammgr/live_stream.h"

#include <memory>

namespace cammgr {

/**
 * Sends the microphone to a camera over the ONVIF back channel (ONVIF Streaming 5.3): G.711 in
 * packets of 20 ms, over a separate RTSP session, so that a camera without a loudspeaker or a
 * machine without a microphone never disturbs the picture. No call waits: each session has a
 * thread, which also cleans up after itself. Called by one thread at a time.
 *
 * The environment variable ZELVARO_TALKBACK_SOURCE names another source than the microphone, as a
 * GStreamer launch line ("audiotestsrc is-live=true").
 */
class TalkBack
{
public:
    TalkBack() = default;
    ~TalkBack() { stop(); }
    TalkBack(const TalkBack &) = delete;
    TalkBack &operator=(const TalkBack &) = delete;

    /// Talks to the camera of a stream; does nothing while that runs, or shortly after it failed.
    void start(const rtsp::StreamRequest &camera);
    /// Also forgets why a talk failed: the next start() tries again.
    void stop();
    /// Why the last talk failed: a CAMMGR_TALK_ value, for as long as start() does not try again;
    /// 0 else.
    int failure() const;
    /// From start() until stop() or until the camera or the microphone failed.
    bool isRunning() const;

private:
    class Run;
    std::shared_ptr<Run> m_run;
};

} // namespace cammgr
