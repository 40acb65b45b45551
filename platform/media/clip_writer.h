#pragma once

#include "platform/media/clip_names.h"
#include "platform/media/frame_taker.h"
#include "platform/media/part_file.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace media {

/// Counts clips that are being closed, so that a process can wait for them before it ends.
class ClosingClips
{
public:
    void begin();
    void end();
    /// False when clips are still open after the time.
    bool wait(std::chrono::milliseconds longest);

private:
    std::mutex m_mutex; ///< protects m_count
    std::condition_variable m_none;
    int m_count = 0;
};

/// What one clip holds.
struct ClipFormat
{
    CapsRef video;
    bool withAudio = false;   ///< sound is expected
    CapsRef audio;            ///< of it; empty while nothing has come
    bool withStill = false;   ///< writes a still of the clip, from its first frame
    bool reordered = false;   ///< presentation order differs from decoding order
    bool isOrderKnown = true; ///< false: the first frames decide it, and the file waits for them
    int reserveSeconds = 0;   ///< longest clip that the index at the head of the file has room for
    int indexBytesPerSecond = 550; ///< room for one second of one track
};

/**
 * One MP4 file: the camera's video untouched, its audio as AAC. The index at the head of the file
 * is brought up to date each second, so that what is on the disk plays at any moment. A separate
 * pipeline: its errors do not affect the stream.
 */
class ClipWriter : public std::enable_shared_from_this<ClipWriter>
{
public:
    /// failed: called at most once, on a media worker, when the file cannot go on (disk full).
    ClipWriter(std::string path, ClipFormat format, GstClockTime start,
               std::shared_ptr<ClosingClips> closing, std::function<void()> failed);
    ~ClipWriter();
    ClipWriter(const ClipWriter &) = delete;
    ClipWriter &operator=(const ClipWriter &) = delete;

    /// Takes and keeps; never waits. Any thread. The file is made in the background as soon as it
    /// is known whether there is audio for it: a track without a sample makes a file unreadable.
    /// Holes in the sound become silence.
    void push(const AccessUnit &unit);
    void push(const AudioUnit &unit);
    /// Finishes the file in the background.
    void close();

    const ClipFormat &format() const { return m_format; }
    /// Whether the file can hold frames in another order than that of decoding.
    bool isReordered() const { return m_reordered; }
    const std::string &path() const { return m_claim.path(); }
    GstClockTime start() const { return m_start; }
    /// Bytes of the file so far, with the room for the index; approximate.
    uint64_t bytes() const { return m_bytes; }

private:
    struct Pipeline;

    void open();
    bool build();
    std::string stillPath() const { return path() + ".jpeg"; }
    void writeStill(const AccessUnit &picture) const;
    void finish();
    void removeWhatCannotPlay() const;
    uint64_t indexBytes() const;
    void fail();
    void sendVideo(const AccessUnit &unit);
    void sendAudio(const AudioUnit &unit);
    void bridgeAudioGap(GstClockTime now);
    static GstBusSyncReply readMessage(GstBus *, GstMessage *message, gpointer self);

    const ClipClaim m_claim;
    const ClipFormat m_format;
    std::atomic<bool> m_reordered;
    const GstClockTime m_start;
    const std::shared_ptr<ClosingClips> m_closing;
    const std::function<void()> m_failed;
    std::atomic<uint64_t> m_bytes = 0;
    std::atomic<bool> m_hasFailed = false;

    std::mutex m_stateMutex;            ///< held while a media worker opens or finishes the file
    bool m_finished = false;            ///< protected by it
    std::optional<FileIdentity> m_file; ///< protected by it; of the file that was made

    std::mutex m_mutex; ///< protects everything below
    std::condition_variable m_written;
    std::unique_ptr<Pipeline> m_pipeline;
    std::vector<AccessUnit> m_waitingVideo; ///< came before the file was open
    std::vector<AudioUnit> m_waitingAudio;
    CapsRef m_audioCaps;          ///< empty until the first sound when the format did not tell
    GstClockTime m_nextVideo = 0; ///< in the file, at the earliest
    GstClockTime m_nextAudio = 0;
    bool m_opening = false;
    bool m_audioEnded = false;
    bool m_closeAsked = false;
    bool m_ended = false; ///< the muxer wrote its last byte, or cannot
};

} // namespace media
