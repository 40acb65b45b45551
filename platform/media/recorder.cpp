#include "platform/media/recorder.h"

#include "platform/media/clip_names.h"
#include "platform/media/left_overs.h"
#include "platform/media/worker_pool.h"

#include <glib/gstdio.h>

#include <algorithm>
#include <filesystem>
#include <unistd.h>
#include <utility>

namespace media {

namespace {

using namespace std::chrono_literals;

// A stream in which this many frames came without a B frame has none.
constexpr uint64_t framesThatTell = 60;
constexpr double guessedBytesPerSecond = 512'000.0 / 8;
// The index may take this part of a clip at most, and this much when there is no limit.
constexpr uint64_t indexPart = 8;
constexpr uint64_t largestIndex = 8 * 1024 * 1024;
constexpr int shortestReserve = 60;
// What the muxer needs for one frame: its size, its duration, a share of the chunk table.
constexpr int indexBytesPerFrame = 20;
constexpr int indexBytesPerSecondAtLeast = 550;
// After a clip failed: how often to look for room, how much makes a new clip worth while, and how
// long that clip has to last before it counts.
constexpr auto roomCheckPeriod = 5s;
constexpr uintmax_t minRoomBytes = 64 * 1024 * 1024;
constexpr GstClockTime provingTime = 2 * GST_SECOND;

bool isWritableFolder(const std::string &path)
{
    gchar *folder = g_path_get_dirname(path.c_str());
    const bool writable = g_access(folder, W_OK) == 0;
    g_free(folder);
    return writable;
}

} // namespace

Recorder::Recorder(const GopBuffer &memory, std::shared_ptr<ClosingClips> closing,
                   std::function<void()> wantKeyFrame)
    : m_memory(memory)
    , m_closing(std::move(closing))
    , m_wantKeyFrame(std::move(wantKeyFrame))
{
}

int Recorder::begin(const std::string &basePath, int limitBytes, bool withAudio)
{
    if (!isWritableFolder(basePath))
        return -1;
    // A recording of the same second may have the same base.
    const int firstNumber = firstFreeClip(basePath);
    if (firstNumber == 0)
        return -1;
    tidyFolderOf(basePath);
    bool needKey = false;
    {
        std::lock_guard lock(m_mutex);
        if (m_writing && !m_stalled)
            return -1;
        if (m_clip)
            m_clip->close();
        m_clip.reset();
        m_writing = true;
        m_stalled = m_roomIsBack = false;
        m_basePath = basePath;
        m_limit = limitBytes > 0 ? static_cast<uint64_t>(limitBytes) : 0;
        m_withAudio = withAudio;
        m_clipNumber = firstNumber - 1;
        m_gopBytes = m_largestGop = 0;
        m_askedForKey = false;
        const auto audio = m_memory.audio();
        if (!audio.empty())
            m_audioCaps = audio.back().caps;
        const auto frames = m_memory.frames();
        needKey = frames.empty();
        for (const AccessUnit &unit : frames) {
            write(unit);
            if (unit.number == frames.front().number && m_clip)
                for (const AudioUnit &sound : audio)
                    m_clip->push(sound);
        }
    }
    if (needKey)
        m_wantKeyFrame();
    return 0;
}

int Recorder::end()
{
    std::lock_guard lock(m_mutex);
    if (!m_writing)
        return -1;
    m_writing = m_stalled = false;
    if (m_clip)
        m_clip->close();
    m_clip.reset();
    return 0;
}

void Recorder::expectAudio(CapsRef caps)
{
    std::lock_guard lock(m_mutex);
    m_audioCaps = std::move(caps);
}

void Recorder::interrupt()
{
    std::lock_guard lock(m_mutex);
    if (m_clip)
        m_clip->close();
    m_clip.reset();
    m_gopBytes = 0;
    m_askedForKey = false;
    m_lastTime = 0;
}

bool Recorder::isWriting() const
{
    std::lock_guard lock(m_mutex);
    return m_writing && m_clip && !m_stalled;
}

bool Recorder::isWaiting() const
{
    std::lock_guard lock(m_mutex);
    return m_writing && (!m_clip || m_stalled);
}

void Recorder::takeFrame(const AccessUnit &unit)
{
    bool needKey = false;
    {
        std::lock_guard lock(m_mutex);
        ++m_framesSeen;
        // Times that go back prove nothing: they are reset while video and audio are brought
        // together, and on a busy machine by much.
        m_sawReordering |= unit.bipredictive;
        if (m_lastTime != 0 && unit.time > m_lastTime) {
            const auto interval = static_cast<double>(unit.time - m_lastTime) / GST_SECOND;
            const double rate = static_cast<double>(unit.size()) / interval;
            m_bytesPerSecond += (rate - m_bytesPerSecond) / (m_framesSeen < 25 ? 5 : 100);
            m_meanInterval = m_meanInterval == 0
                                 ? unit.time - m_lastTime
                                 : (m_meanInterval * 7 + unit.time - m_lastTime) / 8;
        }
        m_lastTime = unit.time;
        if (!m_writing || unit.number <= m_lastNumber)
            return;
        if (m_stalled)
            checkRoom();
        write(unit);
        // A camera that sends key frames rarely is requested to send one when the clip is full.
        if (m_clip && m_limit != 0 && m_clip->bytes() > m_limit && !m_askedForKey)
            needKey = m_askedForKey = true;
    }
    if (needKey)
        m_wantKeyFrame();
}

void Recorder::takeAudio(const AudioUnit &unit)
{
    std::lock_guard lock(m_mutex);
    m_audioCaps = unit.caps;
    if (m_writing && m_clip)
        m_clip->push(unit);
}

/// Called with the lock.
void Recorder::write(const AccessUnit &unit)
{
    if (unit.key) {
        m_largestGop = std::max(m_largestGop, m_gopBytes);
        m_gopBytes = 0;
        if (m_clip ? mustRollOver(unit) : !m_stalled || std::exchange(m_roomIsBack, false))
            startClip(unit);
    }
    if (!m_clip)
        return;
    if (m_stalled && unit.time > m_clip->start() + provingTime)
        m_stalled = false;
    m_gopBytes += unit.size();
    m_lastNumber = unit.number;
    m_clip->push(unit);
}

/// Called with the lock. Looks for room in the background, now and then: a disk that was removed
/// may take its time to say so.
void Recorder::checkRoom()
{
    const auto now = SteadyClock::now();
    if (m_clip || m_roomChecking || m_roomIsBack || now < m_nextRoomCheck)
        return;
    m_roomChecking = true;
    m_nextRoomCheck = now + roomCheckPeriod;
    mediaWorkers().run([weak = weak_from_this(), base = m_basePath] {
        std::error_code error;
        const auto folder = std::filesystem::path(base).parent_path();
        const bool room = std::filesystem::space(folder, error).available >= minRoomBytes && !error;
        if (const auto self = weak.lock()) {
            std::lock_guard lock(self->m_mutex);
            self->m_roomChecking = false;
            self->m_roomIsBack = room;
        }
    });
}

/// Called with the lock.
bool Recorder::mustRollOver(const AccessUnit &unit) const
{
    const ClipFormat &format = m_clip->format();
    if (!gst_caps_is_equal(format.video.get(), unit.caps.get()))
        return true;
    if (m_sawReordering && !m_clip->isReordered())
        return true;
    const GstClockTime length = unit.time > m_clip->start() ? unit.time - m_clip->start() : 0;
    // One key-frame distance more must fit, and the mean rate can be off by some.
    if (length / GST_SECOND >= static_cast<GstClockTime>(format.reserveSeconds) * 8 / 10)
        return true;
    return m_limit != 0 && m_clip->bytes() + m_largestGop > m_limit;
}

/// Called with the lock.
ClipFormat Recorder::formatFor(const AccessUnit &first) const
{
    ClipFormat format;
    format.video = first.caps;
    format.reordered = m_sawReordering;
    format.isOrderKnown = m_sawReordering || m_framesSeen >= framesThatTell;
    format.withAudio = m_withAudio;
    if (m_withAudio)
        format.audio = m_audioCaps;
    const int framesPerSecond =
        m_meanInterval == 0 ? 25 : static_cast<int>(GST_SECOND / m_meanInterval) + 1;
    format.indexBytesPerSecond =
        std::clamp(framesPerSecond * indexBytesPerFrame, indexBytesPerSecondAtLeast, 10'000);

    const uint64_t perSecond = uint64_t{2} * (m_withAudio ? 2 : 1) * format.indexBytesPerSecond;
    uint64_t seconds = largestIndex / perSecond;
    if (m_limit != 0) {
        const double rate = m_bytesPerSecond > 0 ? m_bytesPerSecond : guessedBytesPerSecond;
        const auto wanted = static_cast<uint64_t>(1.5 * static_cast<double>(m_limit) / rate);
        seconds = std::min({seconds, wanted, m_limit / indexPart / perSecond});
    }
    format.reserveSeconds = std::max(static_cast<int>(seconds), shortestReserve);
    return format;
}

/// Called with the lock.
void Recorder::startClip(const AccessUnit &first)
{
    if (m_clip)
        m_clip->close();
    ++m_clipNumber;
    m_askedForKey = false;
    ClipFormat format = formatFor(first);
    // The client makes the still of the first clip only.
    format.withStill = m_clipNumber > 1;
    auto self = weak_from_this();
    auto clip = std::make_shared<std::weak_ptr<ClipWriter>>();
    m_clip = std::make_shared<ClipWriter>(clipPath(m_basePath, m_clipNumber), std::move(format),
                                          first.time, m_closing, [self, clip] {
                                              const auto recorder = self.lock();
                                              const auto failed = clip->lock();
                                              if (recorder && failed)
                                                  recorder->clipFailed(failed.get());
                                          });
    *clip = m_clip;
}

void Recorder::clipFailed(const ClipWriter *clip)
{
    std::lock_guard lock(m_mutex);
    if (m_clip.get() != clip)
        return;
    // The disk is full or was removed: what was written stays, the stream continues.
    m_stalled = true;
    m_roomIsBack = false;
    m_nextRoomCheck = SteadyClock::now() + roomCheckPeriod;
    m_clip->close();
    m_clip.reset();
}

} // namespace media
