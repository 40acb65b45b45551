#pragma once

#include "platform/media/frame_taker.h"
#include "platform/rtsp/open_session.h"
#include "platform/rtsp/stream_request.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cammgr {

struct StreamFigures;

using rtsp::StreamEnd;
using rtsp::StreamFailure;

/// What to play, and where.
struct StreamRequest
{
    rtsp::StreamRequest source;
    uintptr_t window = 0; ///< native window to draw on; 0 plays without drawing
    /// A connection that has brought the stream's description; may be null. Used up by the first
    /// start, on the loop thread.
    std::shared_ptr<rtsp::OpenSession> session = {};
};

/**
 * One live stream of one camera: receives it, draws it, takes snapshots and records.
 *
 * Called by one thread at a time. No call waits for the camera; see each call for what it waits
 * for. A stream that ended by itself is lost until start() or stop().
 */
class LiveStream
{
public:
    /// Called on threads of the library, one call at a time, never during or after stop(), and not
    /// allowed to call start(), stop() or the destructor. Each may be empty.
    struct Listener
    {
        std::function<void()> firstFrame; ///< isPlaying() became true
        std::function<void(const StreamFailure &)>
            ended; ///< exactly once for a stream that ends by itself
        /// Key frames have come for 5 s to a window that can be seen, and none could be decoded.
        /// Once for each start.
        std::function<void()> undecodable;
        std::function<void()> wantKeyFrame; ///< a key frame now would show a frame sooner
    };

    explicit LiveStream(Listener listener);
    /// Stops, and waits (at most some seconds) until clips that are being closed are on the disk.
    ~LiveStream();
    LiveStream(const LiveStream &) = delete;
    LiveStream &operator=(const LiveStream &) = delete;

    /// Starts a stream in the background; one that is active already is stopped first. One that
    /// was lost goes on, where the window is the same: its last picture stays there until the next
    /// one comes, and a recording continues in its next clip.
    void start(const StreamRequest &request);
    /// Ends the stream and its recording. Nothing draws on the window any more, and no callback
    /// runs any more, when it returns; the rest of the clean-up continues in the background.
    void stop();

    /// Starting or playing: from start() until stop() or the end of the stream.
    bool isActive() const;
    /// From the first picture that was drawn, until none came for 5 s or the stream ends. Where
    /// nothing is drawn (no window, or one that nobody can see): from the first key frame on.
    bool isPlaying() const;
    /// Whether the stream that is active has video, audio; false while that is unknown.
    bool hasVideo() const;
    bool hasAudio() const;

    /// 0 (silent) to 200; 100 is the level of the source. Kept for streams started later.
    void setVolume(int percent);
    /// Plays the sound at a tenth of the volume, so that a microphone that is sent to the camera
    /// does not send the camera's own sound back to it. Kept for streams started later.
    void duck(bool on);

    /// Writes the newest frame in the size of the stream as JPEG, to a temporary file next to path
    /// that is then renamed. Takes as long as one JPEG. 0, or negative when there is no frame or
    /// the file cannot be written; the file at path is then as before.
    int snapshot(const std::string &path);

    /// Records to basePath + ".mp4" from the key frame before the call; at limitBytes (0: never)
    /// continues in basePath + "_0002.mp4", "_0003.mp4" ... without a lost frame, each of those
    /// with a still picture (name + ".jpeg"). 0, or negative when not playing or already writing.
    int beginWriting(const std::string &basePath, int limitBytes);
    /// Ends the recording; the file is finished in the background. Negative when none runs.
    int endWriting();
    /// Whether frames go into a clip; false after endWriting(), while the stream is lost, and after
    /// stop().
    bool isWriting() const;
    /// A recording was begun, but nothing can be written: no key frame came yet, the stream is
    /// lost, or the disk is full or was removed. A new clip begins when there is space again.
    bool isWaitingToWrite() const;

    int frameRate() const; ///< frames that arrived in the last second
    int bitRate() const;   ///< bits of video that arrived in the last second
    int width() const;     ///< pixels; 0 while unknown
    int height() const;
    /// What came since the last key frame; empty when the stream does not play.
    std::vector<media::AccessUnit> currentFrames() const;
    /// Of the stream that was started last; nullopt before and after stop().
    std::optional<StreamFigures> figures() const;

private:
    class Session;
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace cammgr
