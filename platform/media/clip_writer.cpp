#include "platform/media/clip_writer.h"

#include "platform/media/audio_codec.h"
#include "platform/media/clip_room.h"
#include "platform/media/still_picture.h"
#include "platform/media/worker_pool.h"

#include <gst/app/gstappsrc.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace media {

namespace {

using namespace std::chrono_literals;

// The muxer takes video only as far as it knows the audio; a camera that falls silent would hold
// the video back. From here on the clip is told that nothing comes.
constexpr GstClockTime longestAudioGap = 500 * GST_MSECOND;
// When none came within this time, the file gets no audio track.
constexpr GstClockTime longestAudioWait = 700 * GST_MSECOND;
// Backlog at which the disk is treated as failed.
constexpr guint64 longestQueueBytes = 64 * 1024 * 1024;
constexpr auto finishTimeout = 10s;
constexpr auto stillBudget = 1s;
// A camera that sends B frames sends the first of them within so many frames.
constexpr size_t framesThatTellOrder = 8;
// Frames that were delayed on the way arrive together, at one time. Players need distinct times.
constexpr GstClockTime shortestPicture = GST_MSECOND;
// A kill costs what came since the index was written, and what the muxer held back to put sound and
// picture in order: together less than a second.
constexpr GstClockTime indexPeriod = 500 * GST_MSECOND;

GstBuffer *copyAt(GstBuffer *original, GstClockTime time,
                  GstClockTime duration = GST_CLOCK_TIME_NONE)
{
    GstBuffer *buffer = gst_buffer_copy(original);
    GST_BUFFER_PTS(buffer) = time;
    GST_BUFFER_DTS(buffer) = GST_CLOCK_TIME_NONE;
    GST_BUFFER_DURATION(buffer) = duration;
    return buffer;
}

/// Parser (that for JPEG loses the last frame) and muxer for a video. The file format of QuickTime,
/// of which MP4 is a descendant, is the one of the two in which the framework writes JPEG.
std::string videoForMp4(GstCaps *caps, bool isReordered)
{
    const GstStructure *format = gst_caps_get_structure(caps, 0);
    if (gst_structure_has_name(format, "image/jpeg"))
        return "image/jpeg ! qtmux";
    const std::string codec = gst_structure_has_name(format, "video/x-h265") ? "h265" : "h264";
    return codec + "parse ! " + (isReordered ? codec + "timestamper ! " : "") + "mp4mux";
}

} // namespace

void ClosingClips::begin()
{
    std::lock_guard lock(m_mutex);
    ++m_count;
}

void ClosingClips::end()
{
    std::lock_guard lock(m_mutex);
    --m_count;
    m_none.notify_all();
}

bool ClosingClips::wait(std::chrono::milliseconds longest)
{
    std::unique_lock lock(m_mutex);
    return m_none.wait_for(lock, longest, [this] { return m_count == 0; });
}

struct ClipWriter::Pipeline
{
    ~Pipeline()
    {
        if (!pipeline)
            return;
        const base::GObjectPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
        gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
        gst_bus_set_flushing(bus.get(), TRUE);
        gst_element_set_state(pipeline.get(), GST_STATE_NULL);
    }

    base::GObjectPtr<GstElement> pipeline;
    base::GObjectPtr<GstElement> video;
    base::GObjectPtr<GstElement> audio; ///< null without an audio track
};

ClipWriter::ClipWriter(std::string path, ClipFormat format, GstClockTime start,
                       std::shared_ptr<ClosingClips> closing, std::function<void()> failed)
    : m_claim(std::move(path))
    , m_format(std::move(format))
    , m_reordered(m_format.reordered)
    , m_start(start)
    , m_closing(std::move(closing))
    , m_failed(std::move(failed))
    , m_audioCaps(m_format.audio)
{
    m_closing->begin();
    m_bytes = indexBytes();
}

ClipWriter::~ClipWriter()
{
    m_pipeline.reset();
    m_closing->end();
}

/// Called with the lock.
void ClipWriter::open()
{
    if (std::exchange(m_opening, true))
        return;
    mediaWorkers().run([self = shared_from_this()] {
        std::lock_guard state(self->m_stateMutex);
        // A clip can be over before a worker comes to it.
        if (!self->m_pipeline && !self->m_finished && !self->build())
            self->fail();
    });
}

void ClipWriter::close()
{
    {
        std::lock_guard lock(m_mutex);
        if (m_closeAsked)
            return;
        m_closeAsked = true;
    }
    mediaWorkers().run([self = shared_from_this()] {
        std::lock_guard state(self->m_stateMutex);
        // A clip that ends before its file was made still becomes a file.
        if (!self->m_pipeline && !self->m_hasFailed)
            self->build();
        self->m_finished = true;
        self->finish();
    });
}

void ClipWriter::push(const AccessUnit &unit)
{
    m_bytes += unit.size();
    std::lock_guard lock(m_mutex);
    if (m_closeAsked || m_hasFailed)
        return;
    if (m_pipeline) {
        sendVideo(unit);
        return;
    }
    m_waitingVideo.push_back(unit);
    if (!m_opening)
        m_reordered = m_reordered || unit.bipredictive;
    const bool orderTold =
        m_format.isOrderKnown || m_reordered || m_waitingVideo.size() >= framesThatTellOrder;
    // Sound of a known kind may come later; it is silence until then.
    const bool soundTold = !m_format.withAudio || m_format.audio;
    if ((soundTold && orderTold) || unit.time >= m_start + longestAudioWait)
        open();
}

void ClipWriter::push(const AudioUnit &unit)
{
    if (!m_format.withAudio || unit.time < m_start)
        return;
    m_bytes += gst_buffer_get_size(unit.buffer.get());
    std::lock_guard lock(m_mutex);
    if (m_closeAsked || m_hasFailed)
        return;
    if (m_pipeline) {
        sendAudio(unit);
        return;
    }
    if (!m_audioCaps)
        m_audioCaps = unit.caps;
    m_waitingAudio.push_back(unit);
    if (m_format.isOrderKnown || m_reordered || m_waitingVideo.size() >= framesThatTellOrder)
        open();
}

/// On a media worker, with the state lock.
bool ClipWriter::build()
{
    std::string chain = "appsrc name=video format=time max-bytes=0 ! " +
                        videoForMp4(m_format.video.get(), m_reordered) +
                        " name=mux ! filesink name=file async=false";
    CapsRef audioCaps;
    BufferRef silence;
    {
        std::lock_guard lock(m_mutex);
        audioCaps = m_audioCaps;
        if (audioCaps && m_waitingAudio.empty()) {
            silence = silentPiece(audioCaps.get());
            if (!silence)
                audioCaps = {};
        }
    }
    const std::string audio = audioCaps ? audioForMp4(audioCaps.get()) : std::string();
    if (!audio.empty())
        chain += " appsrc name=audio format=time max-bytes=0 ! " + audio + " ! mux.";

    auto fresh = std::make_unique<Pipeline>();
    GError *error = nullptr;
    GstElement *pipeline = gst_parse_launch(chain.c_str(), &error);
    if (!pipeline || error) {
        g_log("cammgr", G_LOG_LEVEL_WARNING, "no clip: %s", error ? error->message : "unknown");
        g_clear_error(&error);
        if (pipeline)
            gst_object_unref(gst_object_ref_sink(pipeline));
        return false;
    }
    fresh->pipeline.reset(GST_ELEMENT(gst_object_ref_sink(pipeline)));
    GstBin *bin = GST_BIN(pipeline);
    fresh->video.reset(gst_bin_get_by_name(bin, "video"));
    fresh->audio.reset(audio.empty() ? nullptr : gst_bin_get_by_name(bin, "audio"));
    g_object_set(fresh->video.get(), "caps", m_format.video.get(), nullptr);
    if (fresh->audio)
        g_object_set(fresh->audio.get(), "caps", audioCaps.get(), nullptr);
    const base::GObjectPtr<GstElement> file(gst_bin_get_by_name(bin, "file"));
    g_object_set(file.get(), "location", path().c_str(), nullptr);
    const base::GObjectPtr<GstElement> mux(gst_bin_get_by_name(bin, "mux"));
    g_object_set(mux.get(), "reserved-max-duration", m_format.reserveSeconds * GST_SECOND,
                 "reserved-moov-update-period", indexPeriod, "reserved-bytes-per-sec",
                 static_cast<guint>(m_format.indexBytesPerSecond), nullptr);
    const base::GObjectPtr<GstBus> bus(gst_element_get_bus(pipeline));
    gst_bus_set_sync_handler(bus.get(), &ClipWriter::readMessage, this, nullptr);
    const bool opened =
        gst_element_set_state(pipeline, GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE;
    m_file = FileIdentity::of(path());
    if (!opened)
        return false;

    std::lock_guard lock(m_mutex);
    m_pipeline = std::move(fresh);
    m_audioEnded = !m_pipeline->audio;
    if (silence)
        sendAudio({silence, audioCaps, m_start});
    for (const AudioUnit &unit : m_waitingAudio)
        sendAudio(unit);
    m_waitingAudio.clear();
    if (m_format.withStill && !m_waitingVideo.empty()) {
        mediaWorkers().run([self = shared_from_this(), first = m_waitingVideo.front()] {
            self->writeStill(first);
        });
    }
    for (const AccessUnit &unit : m_waitingVideo)
        sendVideo(unit);
    m_waitingVideo.clear();
    return true;
}

/// On a media worker.
void ClipWriter::writeStill(const AccessUnit &picture) const
{
    const std::string still = stillPath();
    writeJpeg(decodeLast({picture}, stillBudget), still);
    // No still of a clip that was deleted in the meantime.
    if (!FileIdentity::of(path()))
        std::remove(still.c_str());
}

/// Called with the lock.
void ClipWriter::sendVideo(const AccessUnit &unit)
{
    // B frames may be shown before the key frame that they follow: time never goes below 0.
    GstClockTime time = unit.time > m_start ? unit.time - m_start : 0;
    GstClockTime duration = GST_CLOCK_TIME_NONE;
    if (!m_reordered) {
        time = std::max(time, m_nextVideo);
        // The last frame is shown as long as the one before: without a duration players skip it.
        if (m_nextVideo > 0)
            duration = time - m_nextVideo + shortestPicture;
    }
    m_nextVideo = time + shortestPicture;
    auto *source = GST_APP_SRC(m_pipeline->video.get());
    bridgeAudioGap(time);
    gst_app_src_push_buffer(source, copyAt(unit.buffer.get(), time, duration));
    if (gst_app_src_get_current_level_bytes(source) > longestQueueBytes)
        fail();
}

/// Called with the lock.
void ClipWriter::sendAudio(const AudioUnit &unit)
{
    // Where the camera's clock is set back, sound would lie over sound.
    const GstClockTime time = unit.time - m_start;
    if (m_audioEnded || time < m_nextAudio)
        return;
    m_nextAudio = time + 1;
    gst_app_src_push_buffer(GST_APP_SRC(m_pipeline->audio.get()), copyAt(unit.buffer.get(), time));
}

/// Called with the lock.
void ClipWriter::bridgeAudioGap(GstClockTime now)
{
    if (m_audioEnded || now < m_nextAudio + longestAudioGap)
        return;
    gst_element_send_event(m_pipeline->audio.get(),
                           gst_event_new_gap(m_nextAudio, now - m_nextAudio));
    m_nextAudio = now;
}

/// On a media worker, with the state lock.
void ClipWriter::finish()
{
    std::unique_lock lock(m_mutex);
    if (!m_pipeline)
        return;
    gst_app_src_end_of_stream(GST_APP_SRC(m_pipeline->video.get()));
    if (!m_audioEnded)
        gst_app_src_end_of_stream(GST_APP_SRC(m_pipeline->audio.get()));
    m_audioEnded = true;
    if (!m_written.wait_for(lock, finishTimeout, [this] { return m_ended; }))
        g_log("cammgr", G_LOG_LEVEL_WARNING, "%s: not finished in time", path().c_str());
    const bool whole = m_ended && !m_hasFailed;
    auto old = std::move(m_pipeline);
    lock.unlock();
    old.reset();
    if (whole)
        giveBackIndexRoom(path());
    else if (m_hasFailed)
        removeWhatCannotPlay();
}

uint64_t ClipWriter::indexBytes() const
{
    // The muxer keeps two copies of the index, so that one is whole at any moment.
    const int tracks = m_format.withAudio ? 2 : 1;
    return uint64_t{2} * tracks * m_format.reserveSeconds * m_format.indexBytesPerSecond;
}

/// A file without a single frame is useless.
void ClipWriter::removeWhatCannotPlay() const
{
    std::error_code error;
    const auto size = std::filesystem::file_size(path(), error);
    if (!error && size < indexBytes() && FileIdentity::of(path()) == m_file) {
        std::filesystem::remove(path(), error);
        if (m_format.withStill)
            std::filesystem::remove(stillPath(), error);
    }
}

/// Any thread; the lock may be held.
void ClipWriter::fail()
{
    if (!m_hasFailed.exchange(true))
        mediaWorkers().run([failed = m_failed] { failed(); });
}

GstBusSyncReply ClipWriter::readMessage(GstBus *, GstMessage *message, gpointer self)
{
    auto *writer = static_cast<ClipWriter *>(self);
    const GstMessageType type = GST_MESSAGE_TYPE(message);
    if (type == GST_MESSAGE_ERROR) {
        GError *error = nullptr;
        gst_message_parse_error(message, &error, nullptr);
        g_log("cammgr", G_LOG_LEVEL_WARNING, "%s: %s", writer->path().c_str(), error->message);
        g_error_free(error);
        writer->fail();
    }
    if (type == GST_MESSAGE_ERROR || type == GST_MESSAGE_EOS) {
        std::lock_guard lock(writer->m_mutex);
        writer->m_ended = true;
        writer->m_written.notify_all();
    }
    gst_message_unref(message);
    return GST_BUS_DROP;
}

} // namespace media
