#include "platform/cammgr/rtsp_source.h"

#include "platform/cammgr/rtp_audio.h"
#include "platform/cammgr/rtsp_status.h"
#include "platform/cammgr/stream_description.h"
#include "platform/media/access_unit.h"

#include <gst/app/gstappsink.h>

#include <cstring>
#include <initializer_list>
#include <iterator>

namespace cammgr {

namespace {

constexpr guint64 connectTimeoutUs = 5'000'000;
constexpr guint64 teardownTimeoutNs = 100'000'000;
// UDP packets may overtake each other; a missing one is waited for this long. Packets that come in
// order are passed on at once all the same.
constexpr guint udpReorderMs = 60;

constexpr int lowestErrorStatus = 400;
constexpr int statusUnauthorized = 401;
constexpr int statusNotFound = 404;
constexpr int statusUnsupportedTransport = 461;

GstElement *addElement(GstElement *bin, const char *factory)
{
    GstElement *element = gst_element_factory_make(factory, nullptr);
    if (!element) {
        g_log("cammgr", G_LOG_LEVEL_WARNING, "media element \"%s\" is missing", factory);
        return nullptr;
    }
    gst_bin_add(GST_BIN(bin), element);
    return element;
}

GstElement *addCapsFilter(GstElement *bin, const char *caps)
{
    GstElement *filter = addElement(bin, "capsfilter");
    if (filter)
        gst_util_set_object_arg(G_OBJECT(filter), "caps", caps);
    return filter;
}

/// Starts a chain of linked elements from its end and connects its head.
bool startBranch(GstPad *pad, std::initializer_list<GstElement *> chain)
{
    for (auto element = std::rbegin(chain); element != std::rend(chain); ++element)
        gst_element_sync_state_with_parent(*element);
    const base::GObjectPtr<GstPad> target(gst_element_get_static_pad(*chain.begin(), "sink"));
    return gst_pad_link(pad, target.get()) == GST_PAD_LINK_OK;
}

} // namespace

struct RtspSource::Callbacks
{
    static GstBusSyncReply message(GstBus *, GstMessage *message, gpointer self)
    {
        static_cast<RtspSource *>(self)->readMessage(message);
        gst_message_unref(message);
        return GST_BUS_DROP;
    }

    static void description(GstElement *, GstSDPMessage *description, gpointer self)
    {
        static_cast<RtspSource *>(self)->readDescription(description);
    }

    static gboolean select(GstElement *, guint, GstCaps *caps, gpointer self)
    {
        return static_cast<RtspSource *>(self)->selectStream(caps);
    }

    static void padAdded(GstElement *, GstPad *pad, gpointer self)
    {
        static_cast<RtspSource *>(self)->addBranch(pad);
    }

    static GstFlowReturn video(GstAppSink *sink, gpointer self)
    {
        return pull(sink, static_cast<RtspSource *>(self), true);
    }

    static GstFlowReturn audio(GstAppSink *sink, gpointer self)
    {
        return pull(sink, static_cast<RtspSource *>(self), false);
    }

    static GstFlowReturn pull(GstAppSink *sink, RtspSource *self, bool video)
    {
        const auto sample = media::SampleRef::adopt(gst_app_sink_pull_sample(sink));
        if (!sample)
            return GST_FLOW_EOS;
        self->takeSample(sample.get(), video);
        return GST_FLOW_OK;
    }

    static GstElement *addSink(GstElement *bin, RtspSource *self, bool video)
    {
        GstElement *sink = addElement(bin, "appsink");
        if (!sink)
            return nullptr;
        g_object_set(sink, "sync", FALSE, "async", FALSE, "enable-last-sample", FALSE, nullptr);
        GstAppSinkCallbacks callbacks = {};
        callbacks.new_sample = video ? &Callbacks::video : &Callbacks::audio;
        gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, self, nullptr);
        return sink;
    }
};

RtspSource::RtspSource(Client &client, const StreamRequest &request, Transport transport)
    : m_client(client)
    , m_request(request)
    , m_transport(transport)
    , m_guard(request.login, g_str_has_prefix(request.url.c_str(), "rtsps:"))
{
}

RtspSource::~RtspSource()
{
    close();
}

bool RtspSource::open()
{
    if (!build())
        return false;
    // The result is ignored: errors come on the bus.
    gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING);
    return true;
}

bool RtspSource::build()
{
    m_pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    m_rtspsrc = m_guard.makeSource();
    if (!m_rtspsrc) {
        g_log("cammgr", G_LOG_LEVEL_WARNING, "media element \"rtspsrc\" is missing");
        return false;
    }
    gst_bin_add(GST_BIN(m_pipeline.get()), m_rtspsrc);
    const bool udp = m_transport == Transport::Udp;
    g_object_set(m_rtspsrc, "location", m_request.url.c_str(), "latency", udp ? udpReorderMs : 0,
                 "tcp-timeout", connectTimeoutUs, "teardown-timeout", teardownTimeoutNs,
                 "user-agent", "Zelvaro", "tls-validation-flags", 0, nullptr);
    gst_util_set_object_arg(G_OBJECT(m_rtspsrc), "protocols", udp ? "udp" : "tcp");
    if (!m_request.username.empty())
        g_object_set(m_rtspsrc, "user-id", m_request.username.c_str(), "user-pw",
                     m_request.password.c_str(), nullptr);
    g_signal_connect(m_rtspsrc, "on-sdp", G_CALLBACK(&Callbacks::description), this);
    g_signal_connect(m_rtspsrc, "select-stream", G_CALLBACK(&Callbacks::select), this);
    g_signal_connect(m_rtspsrc, "pad-added", G_CALLBACK(&Callbacks::padAdded), this);

    const base::GObjectPtr<GstBus> bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), &Callbacks::message, this, nullptr);
    return true;
}

void RtspSource::close()
{
    if (!m_pipeline)
        return;
    // Elements post errors while they are torn down: nobody listens from here on.
    const base::GObjectPtr<GstBus> bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
    gst_bus_set_flushing(bus.get(), TRUE);
    gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    m_pipeline.reset();
    m_rtspsrc = nullptr;
}

void RtspSource::keepAlive()
{
    if (!m_rtspsrc || !m_playing)
        return;
    // Over one connection the framework sends no keep-alive while media flow, and a server may
    // end a session whose client is silent (RFC 2326 12.37).
    gboolean sent = FALSE;
    GstPromise *promise = gst_promise_new();
    g_signal_emit_by_name(m_rtspsrc, "get-parameter", "ping", "text/parameters", promise, &sent);
    gst_promise_unref(promise);
}

void RtspSource::readDescription(const GstSDPMessage *description)
{
    const OfferedMedia offered = readOfferedMedia(description);
    m_client.sourceDescribed(offered.hasVideo, offered.hasAudio);
    if (!offered.hasVideo)
        m_client.sourceEnded(StreamEnd::NoVideo);
}

bool RtspSource::selectStream(GstCaps *caps)
{
    const GstStructure *format = gst_caps_get_structure(caps, 0);
    const char *media = gst_structure_get_string(format, "media");
    const char *encoding = encodingNameOf(format);
    if (!media || gst_structure_has_field(format, "a-sendonly"))
        return false;
    // The first of each kind.
    if (strcmp(media, "video") == 0 && isH264(encoding))
        return !m_videoSelected.exchange(true);
    if (strcmp(media, "audio") == 0 && findRtpAudio(encoding))
        return !m_audioSelected.exchange(true);
    return false;
}

void RtspSource::addBranch(GstPad *pad)
{
    const auto caps = media::CapsRef::adopt(gst_pad_get_current_caps(pad));
    if (!caps)
        return;
    const GstStructure *format = gst_caps_get_structure(caps.get(), 0);
    const char *encoding = encodingNameOf(format);
    const bool linked = isH264(encoding) ? addVideoBranch(pad) : addAudioBranch(pad, encoding);
    if (!linked)
        g_log("cammgr", G_LOG_LEVEL_WARNING, "ignoring stream with unsupported encoding %s",
              encoding ? encoding : "(unknown)");
}

bool RtspSource::addVideoBranch(GstPad *pad)
{
    GstElement *bin = m_pipeline.get();
    // Whole access units all the way: the parser then need not wait for the next frame to know that
    // one is complete.
    GstElement *depay = addElement(bin, "rtph264depay");
    GstElement *whole = addCapsFilter(bin, "video/x-h264,stream-format=byte-stream,alignment=au");
    GstElement *parse = addElement(bin, "h264parse");
    GstElement *avc = addCapsFilter(bin, "video/x-h264,stream-format=avc,alignment=au");
    GstElement *sink = Callbacks::addSink(bin, this, true);
    if (!depay || !whole || !parse || !avc || !sink ||
        !gst_element_link_many(depay, whole, parse, avc, sink, nullptr))
        return false;
    return startBranch(pad, {depay, whole, parse, avc, sink});
}

bool RtspSource::addAudioBranch(GstPad *pad, const char *encoding)
{
    const RtpAudio *kind = findRtpAudio(encoding);
    if (!kind)
        return false;
    GstElement *bin = m_pipeline.get();
    GstElement *depay = addElement(bin, kind->depayloader);
    GstElement *sink = Callbacks::addSink(bin, this, false);
    if (!depay || !sink || !gst_element_link(depay, sink))
        return false;
    return startBranch(pad, {depay, sink});
}

void RtspSource::takeSample(GstSample *sample, bool video)
{
    GstBuffer *buffer = gst_sample_get_buffer(sample);
    GstCaps *caps = gst_sample_get_caps(sample);
    if (!buffer || !caps)
        return;
    const GstClockTime time = gst_segment_to_running_time(gst_sample_get_segment(sample),
                                                          GST_FORMAT_TIME, GST_BUFFER_PTS(buffer));
    if (!video) {
        if (GST_CLOCK_TIME_IS_VALID(time))
            m_client.sourceAudio(
                {media::BufferRef::share(buffer), media::CapsRef::share(caps), time});
        return;
    }
    if (m_frames > 0 && GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT))
        m_client.sourceLostPackets();
    const GstClockTime shown = timeOfNextFrame(time);
    m_client.sourceVideo(media::makeAccessUnit(buffer, caps, shown, ++m_frames));
}

/// The framework tells no time where the camera's clock seems to stand still or to go back, as it
/// does when frames that were delayed arrive together: time goes on by arrival.
GstClockTime RtspSource::timeOfNextFrame(GstClockTime told)
{
    const auto now = media::SteadyClock::now();
    if (GST_CLOCK_TIME_IS_VALID(told))
        m_lastTime = told;
    else if (m_frames > 0)
        m_lastTime +=
            static_cast<GstClockTime>(std::chrono::nanoseconds(now - m_lastArrival).count());
    m_lastArrival = now;
    return m_lastTime;
}

void RtspSource::readMessage(GstMessage *message)
{
    switch (GST_MESSAGE_TYPE(message)) {
    case GST_MESSAGE_ERROR:
        readError(message);
        break;
    case GST_MESSAGE_EOS:
        m_client.sourceEnded(m_playing ? StreamEnd::Closed : StreamEnd::Failed);
        break;
    case GST_MESSAGE_PROGRESS: {
        GstProgressType type;
        gchar *code = nullptr;
        gst_message_parse_progress(message, &type, &code, nullptr);
        const bool playAnswered =
            type == GST_PROGRESS_TYPE_COMPLETE && code && strcmp(code, "request") == 0;
        g_free(code);
        if (playAnswered && !m_playing.exchange(true))
            m_client.sourcePlays();
        break;
    }
    default:
        break;
    }
}

void RtspSource::readError(GstMessage *message)
{
    GError *error = nullptr;
    gchar *debug = nullptr;
    gst_message_parse_error(message, &error, &debug);
    const int status = rtspStatusOf(message);
    g_log("cammgr", G_LOG_LEVEL_INFO, "%s: %s (%d) %s", m_request.url.c_str(), error->message,
          status, debug ? debug : "");

    if (status == statusUnauthorized ||
        g_error_matches(error, GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NOT_AUTHORIZED))
        m_client.sourceEnded(StreamEnd::Refused);
    else if (status == statusNotFound)
        m_client.sourceEnded(StreamEnd::NotFound);
    else if (status == statusUnsupportedTransport ||
             (m_videoSelected && !m_playing && error->domain == GST_STREAM_ERROR))
        // The framework words a refused transport as "no stream that could be set up".
        m_client.sourceTransportRefused();
    else if (m_playing)
        m_client.sourceEnded(StreamEnd::Closed);
    else if (status >= lowestErrorStatus ||
             g_error_matches(error, GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_SETTINGS))
        // After 501 and 551 the framework has no status, but that there is no description.
        m_client.sourceEnded(StreamEnd::PathRefused);
    else
        m_client.sourceEnded(StreamEnd::Failed);
    g_free(debug);
    g_error_free(error);
}

} // namespace cammgr
