#pragma once

#include "platform/media/clip_writer.h"
#include "platform/media/gop_buffer.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace media {

/**
 * Records a stream into one clip after the other without losing a frame: a new clip begins at a
 * key frame, when the size limit comes near, when the picture size or the parameter sets change,
 * or when the index at the head of the file is used up. Callable from any thread; never waits.
 */
class Recorder : public FrameTaker, public std::enable_shared_from_this<Recorder>
{
public:
    /// memory: gets each frame before this does. wantKeyFrame: must not wait.
    Recorder(const GopBuffer &memory, std::shared_ptr<ClosingClips> closing,
             std::function<void()> wantKeyFrame);

    /// See LiveStream::beginWriting(). withAudio: the camera sends audio.
    int begin(const std::string &basePath, int limitBytes, bool withAudio);
    /// The clip is finished in the background. Negative when none was written.
    int end();
    /// Whether frames go into a clip.
    bool isWriting() const;
    /// Whether a recording was begun and nothing can be written: no key frame came yet, or the disk
    /// is full or was removed; writing is tried again every few seconds.
    bool isWaiting() const;

    /// What sound will come, where that is known before the first of it: a clip then does not wait
    /// for it.
    void expectAudio(CapsRef caps);
    /// The next frame belongs to another stream, with which the next clip begins. The one that is
    /// written ends here.
    void interrupt();

    void takeFrame(const AccessUnit &unit) override;
    void takeAudio(const AudioUnit &unit) override;

private:
    void startClip(const AccessUnit &first);
    void write(const AccessUnit &unit);
    void checkRoom();
    bool mustRollOver(const AccessUnit &unit) const;
    void clipFailed(const ClipWriter *clip);
    ClipFormat formatFor(const AccessUnit &first) const;

    const GopBuffer &m_memory;
    const std::shared_ptr<ClosingClips> m_closing;
    const std::function<void()> m_wantKeyFrame;

    mutable std::mutex m_mutex; ///< protects everything below
    bool m_writing = false;     ///< from begin() to end()
    bool m_stalled = false; ///< the last clip failed; the next one waits for room, and proves it
    bool m_roomChecking = false;
    bool m_roomIsBack = false;
    SteadyClock::time_point m_nextRoomCheck;
    std::string m_basePath;
    uint64_t m_limit = 0;
    bool m_withAudio = false;
    std::shared_ptr<ClipWriter> m_clip; ///< null until the first key frame
    int m_clipNumber = 0;               ///< of the clip that was begun last
    uint64_t m_lastNumber = 0;          ///< of the frames, so that none is written twice
    uint64_t m_gopBytes = 0;
    uint64_t m_largestGop = 0;
    bool m_askedForKey = false;
    CapsRef m_audioCaps;
    // Of the stream, whether recorded or not.
    GstClockTime m_lastTime = 0;
    GstClockTime m_meanInterval = 0;
    double m_bytesPerSecond = 0;
    uint64_t m_framesSeen = 0;
    bool m_sawReordering = false;
};

} // namespace media
