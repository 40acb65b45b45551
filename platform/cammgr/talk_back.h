#pragma once

#include "platform/rtsp/stream_request.h"

#include <functional>
#include <memory>

namespace cammgr {

/**
 * Sends the microphone to a camera over the ONVIF back channel (ONVIF Streaming 5.3) in packets of
 * 20 ms, over a separate RTSP session, so that a camera without a loudspeaker or a machine without
 * a microphone never disturbs the picture. No call waits: the session lives on the I/O thread, the
 * microphone has a thread of its own, and both clean up after themselves. Called by one thread at a
 * time. See media::Microphone for another source than the microphone.
 */
class TalkBack
{
public:
    /// @param ended runs on a thread of the library when a talk has ended by itself, never inside a
    /// call; may be empty
    explicit TalkBack(std::function<void()> ended = {}) : m_ended(std::move(ended)) {}
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
    const std::function<void()> m_ended;
    std::shared_ptr<Run> m_run;
};

} // namespace cammgr
