#include "platform/cammgr/talk_back.h"

#include "platform/base/glib_ptr.h"
#include "platform/cammgr/cammgr.h"
#include "platform/cammgr/login_guard.h"
#include "platform/cammgr/rtsp_status.h"
#include "platform/cammgr/stream_description.h"
#include "platform/media/frame_taker.h"
#include "platform/media/gst_ref.h"

#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <pthread.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace cammgr {
namespace {

/// How long the thread may take to notice that it should end.
constexpr GstClockTime turn = 50 * GST_MSECOND;
/// A client that requests a talk again and again that cannot be started costs nothing for this
/// long.
constexpr auto failurePause = std::chrono::seconds(30);
constexpr guint64 tcpTimeout = 5 * 1000 * 1000; // microseconds
constexpr guint64 teardownTimeout = 100 * GST_MSECOND;

struct Channel
{
    guint stream = 0;
    media::CapsRef caps; ///< of the RTP packets that the camera expects
};

/// Whether an error is the camera's answer to a stream that it does not have (551 and the like),
/// and not a lost connection or a refused login.
bool isRefusal(GstMessage *error)
{
    if (const int status = rtspStatusOf(error))
        return status >= GST_RTSP_STS_BAD_REQUEST && status != GST_RTSP_STS_UNAUTHORIZED;
    GError *reason = nullptr;
    gst_message_parse_error(error, &reason, nullptr);
    const base::GErrorPtr guard(reason);
    // After 501 and 551 the framework has no status, but that there is nothing to set up.
    return reason->domain == GST_STREAM_ERROR ||
           g_error_matches(reason, GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_SETTINGS);
}

/// A pipeline or element that is shut down before it is let go.
class RunningElement
{
public:
    /// Takes a floating reference, or null.
    explicit RunningElement(GstElement *element)
        : m_element(element ? GST_ELEMENT(gst_object_ref_sink(element)) : nullptr)
    {
    }
    ~RunningElement()
    {
        if (m_element)
            gst_element_set_state(m_element.get(), GST_STATE_NULL);
    }
    RunningElement(RunningElement &&) = default;
    RunningElement &operator=(RunningElement &&) = delete;

    GstElement *get() const { return m_element.get(); }
    explicit operator bool() const { return m_element != nullptr; }
    bool play() const
    {
        return gst_element_set_state(get(), GST_STATE_PLAYING) != GST_STATE_CHANGE_FAILURE;
    }
    /// Whether an error or the end came since the last look. refused: set when it is an answer that
    /// says that there is nothing to play.
    bool hasEnded(bool *refused = nullptr) const
    {
        const base::GObjectPtr<GstBus> bus(gst_element_get_bus(get()));
        GstMessage *message = gst_bus_pop_filtered(
            bus.get(), static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS));
        if (!message)
            return false;
        if (refused && GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
            *refused = isRefusal(message);
        gst_message_unref(message);
        return true;
    }

private:
    base::GObjectPtr<GstElement> m_element;
};

/// The packets that the camera expects, if in one of the two encodings that ONVIF requires.
std::optional<media::CapsRef> packetCaps(const GstCaps *offered)
{
    const GstStructure *media = gst_caps_get_structure(offered, 0);
    const char *encoding = encodingNameOf(media);
    if (!encoding || (g_strcmp0(encoding, "PCMU") != 0 && g_strcmp0(encoding, "PCMA") != 0))
        return std::nullopt;
    int payload = g_strcmp0(encoding, "PCMU") == 0 ? 0 : 8;
    gst_structure_get_int(media, "payload", &payload);
    return media::CapsRef::adopt(gst_caps_new_simple(
        "application/x-rtp", "media", G_TYPE_STRING, "audio", "clock-rate", G_TYPE_INT, 8000,
        "encoding-name", G_TYPE_STRING, encoding, "payload", G_TYPE_INT, payload, nullptr));
}

/// "autoaudiosrc" sends silence where it finds no device; that is no microphone.
bool isSilentSource(GstElement *source)
{
    if (!GST_IS_BIN(source))
        return false;
    bool silent = false;
    GstIterator *elements = gst_bin_iterate_elements(GST_BIN(source));
    GValue item = G_VALUE_INIT;
    while (gst_iterator_next(elements, &item) == GST_ITERATOR_OK) {
        GstElementFactory *factory =
            gst_element_get_factory(GST_ELEMENT(g_value_get_object(&item)));
        silent = silent || (factory && g_strcmp0(GST_OBJECT_NAME(factory), "audiotestsrc") == 0);
        g_value_reset(&item);
    }
    g_value_unset(&item);
    gst_iterator_free(elements);
    return silent;
}

/// The microphone, ready to run; null without one.
GstElement *makeSource()
{
    if (const char *line = g_getenv("ZELVARO_TALKBACK_SOURCE"); line && *line) {
        GError *error = nullptr;
        GstElement *source = gst_parse_bin_from_description(line, TRUE, &error);
        const base::GErrorPtr guard(error);
        return source;
    }
    GstElement *source = gst_element_factory_make("autoaudiosrc", nullptr);
    if (!source)
        return nullptr;
    gst_object_ref_sink(source);
    if (gst_element_set_state(source, GST_STATE_READY) == GST_STATE_CHANGE_FAILURE ||
        isSilentSource(source)) {
        gst_element_set_state(source, GST_STATE_NULL);
        gst_object_unref(source);
        return nullptr;
    }
    gst_element_set_state(source, GST_STATE_NULL);
    g_object_force_floating(G_OBJECT(source));
    return source;
}

/// source ! G.711 ! RTP ! appsink "out", which paces by the clock and keeps at most 0.2 s.
RunningElement makeMicrophone(const GstCaps *packets)
{
    const GstStructure *media = gst_caps_get_structure(packets, 0);
    const bool muLaw = g_strcmp0(gst_structure_get_string(media, "encoding-name"), "PCMU") == 0;
    int payload = 0;
    gst_structure_get_int(media, "payload", &payload);
    GstElement *source = makeSource();
    if (!source)
        return RunningElement(nullptr);

    const std::string line =
        std::string("audioconvert name=in ! audioresample ! "
                    "audio/x-raw,rate=8000,channels=1 ! ") +
        (muLaw ? "mulawenc ! rtppcmupay" : "alawenc ! rtppcmapay") +
        " min-ptime=20000000 max-ptime=20000000 pt=" + std::to_string(payload) +
        " ! appsink name=out sync=true max-buffers=10 drop=true enable-last-sample=false";
    GError *error = nullptr;
    RunningElement pipeline(gst_parse_launch(line.c_str(), &error));
    const base::GErrorPtr guard(error);
    if (error || !pipeline) {
        gst_object_unref(gst_object_ref_sink(source));
        return RunningElement(nullptr);
    }
    gst_bin_add(GST_BIN(pipeline.get()), source);
    const base::GObjectPtr<GstElement> input(gst_bin_get_by_name(GST_BIN(pipeline.get()), "in"));
    return gst_element_link(source, input.get()) ? std::move(pipeline) : RunningElement(nullptr);
}

} // namespace

/// One talk: everything between start() and the end of its thread, which alone touches the
/// pipelines. What other threads touch is behind the mutex.
class TalkBack::Run
{
public:
    Run(rtsp::StreamRequest camera, std::shared_ptr<Run> before)
        : m_camera(std::move(camera))
        , m_before(std::move(before))
    {
    }

    void work();
    void requestStop()
    {
        const std::lock_guard lock(m_mutex);
        m_stopWanted = true;
        m_changed.notify_all();
    }
    bool isRunning() const
    {
        const std::lock_guard lock(m_mutex);
        return !m_stopWanted && !m_isDone;
    }
    /// See TalkBack::failure().
    int failure() const
    {
        const std::lock_guard lock(m_mutex);
        return m_isDone && !m_stopWanted && media::SteadyClock::now() - m_doneAt < failurePause
                   ? m_failure
                   : 0;
    }
    void finish(int failure)
    {
        const std::lock_guard lock(m_mutex);
        m_isDone = true;
        m_failure = failure;
        m_doneAt = media::SteadyClock::now();
        m_changed.notify_all();
    }

private:
    static gboolean selectStream(GstElement *source, guint stream, GstCaps *caps, gpointer self);
    int talk();
    void waitForPredecessor();
    std::optional<Channel> waitForChannel(const RunningElement &session, bool &refused);
    bool stopWanted() const
    {
        const std::lock_guard lock(m_mutex);
        return m_stopWanted;
    }

    const rtsp::StreamRequest m_camera;
    std::shared_ptr<Run> m_before; ///< the talk before this one; cameras take one at a time

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_stopWanted = false;
    bool m_isDone = false;
    int m_failure = 0; ///< a CAMMGR_TALK_ value
    media::SteadyClock::time_point m_doneAt;
    std::optional<Channel> m_channel;
    std::atomic<bool> m_wasDescribed = false; ///< the camera has described its streams
};

void TalkBack::Run::waitForPredecessor()
{
    if (!m_before)
        return;
    {
        std::unique_lock lock(m_before->m_mutex);
        m_before->m_changed.wait(lock, [this] { return m_before->m_isDone; });
    }
    m_before.reset();
}

gboolean TalkBack::Run::selectStream(GstElement *, guint stream, GstCaps *caps, gpointer self)
{
    auto *run = static_cast<Run *>(self);
    run->m_wasDescribed = true;
    const GstStructure *media = gst_caps_get_structure(caps, 0);
    // The direction is seen from the camera's description: "sendonly" is what we send.
    if (!gst_structure_has_field(media, "a-sendonly"))
        return FALSE;
    std::optional<media::CapsRef> packets = packetCaps(caps);
    const std::lock_guard lock(run->m_mutex);
    if (!packets || run->m_channel)
        return FALSE;
    run->m_channel = Channel{stream, std::move(*packets)};
    run->m_changed.notify_all();
    return TRUE;
}

std::optional<Channel> TalkBack::Run::waitForChannel(const RunningElement &session, bool &refused)
{
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            m_changed.wait_for(lock, std::chrono::nanoseconds(turn),
                               [this] { return m_stopWanted || m_channel; });
            if (m_stopWanted || m_channel)
                return m_stopWanted ? std::nullopt : m_channel;
        }
        if (session.hasEnded(&refused))
            return std::nullopt;
    }
}

void TalkBack::Run::work()
{
    waitForPredecessor();
    int failure = CAMMGR_TALK_FAILED;
    if (!stopWanted() && gst_init_check(nullptr, nullptr, nullptr))
        failure = talk();
    finish(failure);
}

/// Until it is stopped or fails; why it failed.
int TalkBack::Run::talk()
{
    LoginGuard guard(m_camera.login, g_str_has_prefix(m_camera.url.c_str(), "rtsps:"));
    const RunningElement session(gst_pipeline_new("talk-session"));
    GstElement *source = guard.makeSource();
    if (!source)
        return CAMMGR_TALK_FAILED;
    gst_bin_add(GST_BIN(session.get()), source);
    gst_util_set_object_arg(G_OBJECT(source), "protocols", "tcp");
    gst_util_set_object_arg(G_OBJECT(source), "backchannel", "onvif");
    gst_util_set_object_arg(G_OBJECT(source), "tls-validation-flags", "0");
    g_object_set(source, "location", m_camera.url.c_str(), "user-id", m_camera.username.c_str(),
                 "user-pw", m_camera.password.c_str(), "tcp-timeout", tcpTimeout,
                 "teardown-timeout", teardownTimeout, nullptr);
    g_signal_connect(source, "select-stream", G_CALLBACK(&Run::selectStream), this);
    if (!session.play())
        return CAMMGR_TALK_FAILED;
    bool refused = false;
    const std::optional<Channel> channel = waitForChannel(session, refused);
    if (!channel)
        return refused || m_wasDescribed ? CAMMGR_TALK_NOT_TAKEN : CAMMGR_TALK_FAILED;

    const RunningElement microphone = makeMicrophone(channel->caps.get());
    if (!microphone || !microphone.play())
        return CAMMGR_TALK_NO_MICROPHONE;
    const base::GObjectPtr<GstElement> sink(gst_bin_get_by_name(GST_BIN(microphone.get()), "out"));
    while (!stopWanted() && !session.hasEnded()) {
        if (microphone.hasEnded())
            return CAMMGR_TALK_NO_MICROPHONE;
        GstSample *sample = gst_app_sink_try_pull_sample(GST_APP_SINK(sink.get()), turn);
        if (!sample)
            continue;
        // Before the camera answered PLAY the packet is dropped there.
        GstFlowReturn flow = GST_FLOW_OK;
        // Unlike most action signals this one takes the sample over.
        g_signal_emit_by_name(source, "push-backchannel-buffer", channel->stream, sample, &flow);
    }
    return CAMMGR_TALK_FAILED;
}

void TalkBack::start(const rtsp::StreamRequest &camera)
{
    if (isRunning() || failure() != 0)
        return;
    m_run = std::make_shared<Run>(camera, std::move(m_run));
    std::thread([run = m_run] {
        pthread_setname_np(pthread_self(), "cammgr-talk");
        run->work();
    }).detach();
}

void TalkBack::stop()
{
    if (m_run)
        m_run->requestStop();
}

int TalkBack::failure() const
{
    return m_run ? m_run->failure() : 0;
}

bool TalkBack::isRunning() const
{
    return m_run && m_run->isRunning();
}

} // namespace cammgr
