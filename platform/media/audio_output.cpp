#include "platform/media/audio_output.h"

#include "platform/media/audio_codec.h"
#include "platform/media/worker_pool.h"

#include <gst/app/gstappsrc.h>

#include <atomic>

namespace media {

namespace {

constexpr auto retryPause = std::chrono::seconds(10);
// What waits for the device at most; older sound is left out, so that it keeps up with the picture.
constexpr guint64 longestQueue = 300 * GST_MSECOND;

double levelOf(int percent)
{
    return percent / 100.0;
}

} // namespace

/// Shut down where its last owner is: always a media worker.
struct AudioOutput::Pipeline
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

    bool start(const CapsRef &caps, const SinkMaker &makeSink);

    base::GObjectPtr<GstElement> pipeline;
    base::GObjectPtr<GstElement> source;
    base::GObjectPtr<GstElement> volume;
    std::atomic<bool> failed = false;
};

bool AudioOutput::Pipeline::start(const CapsRef &caps, const SinkMaker &makeSink)
{
    const std::string decoder = audioDecoderFor(caps.get());
    GstElement *sink = decoder.empty() ? nullptr : makeSink();
    if (!sink)
        return false;
    const std::string chain =
        "appsrc name=source is-live=true do-timestamp=true format=time leaky-type=downstream ! " +
        decoder + " ! audioconvert ! audioresample ! volume name=volume";
    GstElement *made = gst_parse_launch(chain.c_str(), nullptr);
    pipeline.reset(GST_ELEMENT(gst_object_ref_sink(made)));
    gst_bin_add(GST_BIN(made), sink);
    source.reset(gst_bin_get_by_name(GST_BIN(made), "source"));
    volume.reset(gst_bin_get_by_name(GST_BIN(made), "volume"));
    if (!source || !volume || !gst_element_link(volume.get(), sink))
        return false;
    g_object_set(source.get(), "caps", caps.get(), "max-time", longestQueue, "max-bytes",
                 guint64{0}, nullptr);
    const base::GObjectPtr<GstBus> bus(gst_element_get_bus(made));
    gst_bus_set_sync_handler(bus.get(), &AudioOutput::readMessage, this, nullptr);
    return gst_element_set_state(made, GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE;
}

AudioOutput::~AudioOutput()
{
    close();
}

void AudioOutput::takeAudio(const AudioUnit &unit)
{
    std::lock_guard lock(m_mutex);
    if (m_closed || m_volume == 0)
        return;
    if (m_pipeline && m_pipeline->failed) {
        g_log("cammgr", G_LOG_LEVEL_INFO, "no sound device; trying again later");
        release();
        m_nextTry = SteadyClock::now() + retryPause;
    }
    if (!m_pipeline) {
        if (!m_opening && SteadyClock::now() >= m_nextTry) {
            m_opening = true;
            mediaWorkers().run([self = shared_from_this(), caps = unit.caps] { self->open(caps); });
        }
        return;
    }
    // Played as it comes: the stream's times mean nothing to this pipeline.
    GstBuffer *buffer = gst_buffer_copy(unit.buffer.get());
    GST_BUFFER_PTS(buffer) = GST_BUFFER_DTS(buffer) = GST_CLOCK_TIME_NONE;
    gst_app_src_push_buffer(GST_APP_SRC(m_pipeline->source.get()), buffer);
}

void AudioOutput::setVolume(int percent)
{
    std::lock_guard lock(m_mutex);
    m_volume = percent;
    if (percent == 0)
        release();
    else if (m_pipeline)
        g_object_set(m_pipeline->volume.get(), "volume", levelOf(percent), nullptr);
}

void AudioOutput::interrupt()
{
    std::lock_guard lock(m_mutex);
    release();
}

void AudioOutput::close()
{
    std::lock_guard lock(m_mutex);
    m_closed = true;
    release();
}

void AudioOutput::open(const CapsRef &caps)
{
    auto fresh = std::make_shared<Pipeline>();
    const bool good = fresh->start(caps, m_makeSink);

    std::lock_guard lock(m_mutex);
    m_opening = false;
    if (!good)
        m_nextTry = SteadyClock::now() + retryPause;
    if (!good || m_closed || m_volume == 0)
        return; // this is a media worker: the pipeline may go away here
    g_object_set(fresh->volume.get(), "volume", levelOf(m_volume), nullptr);
    m_pipeline = std::move(fresh);
}

/// Called with the lock.
void AudioOutput::release()
{
    if (m_pipeline)
        mediaWorkers().run([old = std::move(m_pipeline)]() mutable { old.reset(); });
    m_pipeline.reset();
}

GstBusSyncReply AudioOutput::readMessage(GstBus *, GstMessage *message, gpointer self)
{
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        static_cast<Pipeline *>(self)->failed = true;
    gst_message_unref(message);
    return GST_BUS_DROP;
}

} // namespace media
