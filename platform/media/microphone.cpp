#include "platform/media/microphone.h"

#include "platform/base/glib_ptr.h"
#include "platform/media/g726_packing.h"
#include "platform/media/gst_ref.h"

#include <gst/app/gstappsink.h>
#include <gst/gst.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <thread>

namespace media {
namespace {

constexpr std::chrono::milliseconds pieceLength(20);
constexpr int piecesPerSecond = 50;
constexpr int bitsPerByte = 8;
constexpr int aacBitRate = 32'000;

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

std::string encoderFor(const VoiceFormat &format)
{
    switch (format.codec) {
    case VoiceCodec::MuLaw:
        return "mulawenc";
    case VoiceCodec::ALaw:
        return "alawenc";
    case VoiceCodec::G726:
    case VoiceCodec::G726Aal2:
        return "avenc_g726 bitrate=" + std::to_string(format.bitRate);
    case VoiceCodec::AacLc:
        break;
    }
    return "avenc_aac bitrate=" + std::to_string(aacBitRate) +
           " ! audio/mpeg,mpegversion=4,stream-format=raw";
}

/// Of 20 ms; 0 where pieces are of any size.
std::size_t pieceSize(const VoiceFormat &format)
{
    switch (format.codec) {
    case VoiceCodec::MuLaw:
    case VoiceCodec::ALaw:
        return static_cast<std::size_t>(format.rate * format.channels / piecesPerSecond);
    case VoiceCodec::G726:
    case VoiceCodec::G726Aal2:
        return static_cast<std::size_t>(format.bitRate / piecesPerSecond / bitsPerByte);
    case VoiceCodec::AacLc:
        break;
    }
    return 0;
}

} // namespace

class Microphone::Pipeline
{
public:
    /// Null where there is no microphone.
    static std::unique_ptr<Pipeline> make(const VoiceFormat &format)
    {
        GstElement *source = makeSource();
        if (!source)
            return nullptr;
        // The sink keeps the time; what an encoder is given at once it gives out at once.
        const std::string line = "audioconvert name=in ! audioresample ! audio/x-raw,rate=" +
                                 std::to_string(format.rate) +
                                 ",channels=" + std::to_string(format.channels) +
                                 " ! audiobuffersplit output-buffer-duration=1/" +
                                 std::to_string(piecesPerSecond) + " ! " + encoderFor(format) +
                                 " ! appsink name=out sync=true max-buffers=10 drop=true"
                                 " enable-last-sample=false";
        GError *error = nullptr;
        GstElement *made = gst_parse_launch(line.c_str(), &error);
        const base::GErrorPtr guard(error);
        if (!made || error) {
            if (made)
                gst_object_unref(gst_object_ref_sink(made));
            gst_object_unref(gst_object_ref_sink(source));
            return nullptr;
        }
        std::unique_ptr<Pipeline> pipeline(new Pipeline(made));
        return pipeline->run(source) ? std::move(pipeline) : nullptr;
    }
    ~Pipeline() { gst_element_set_state(m_pipeline.get(), GST_STATE_NULL); }
    Pipeline(const Pipeline &) = delete;
    Pipeline &operator=(const Pipeline &) = delete;

    SampleRef pull(std::chrono::milliseconds limit) const
    {
        return SampleRef::adopt(gst_app_sink_try_pull_sample(
            GST_APP_SINK(m_sink.get()), static_cast<GstClockTime>(limit.count()) * GST_MSECOND));
    }
    /// Whether an error or the end came.
    bool hasEnded() const
    {
        if (m_hasEnded)
            return true;
        const base::GObjectPtr<GstBus> bus(gst_element_get_bus(m_pipeline.get()));
        GstMessage *message = gst_bus_pop_filtered(
            bus.get(), static_cast<GstMessageType>(GST_MESSAGE_ERROR | GST_MESSAGE_EOS));
        if (!message)
            return false;
        gst_message_unref(message);
        m_hasEnded = true;
        return true;
    }

private:
    explicit Pipeline(GstElement *floating) : m_pipeline(GST_ELEMENT(gst_object_ref_sink(floating)))
    {
    }
    bool run(GstElement *source)
    {
        gst_bin_add(GST_BIN(m_pipeline.get()), source);
        const base::GObjectPtr<GstElement> input(
            gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "in"));
        m_sink.reset(gst_bin_get_by_name(GST_BIN(m_pipeline.get()), "out"));
        return gst_element_link(source, input.get()) &&
               gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) !=
                   GST_STATE_CHANGE_FAILURE;
    }

    base::GObjectPtr<GstElement> m_pipeline;
    base::GObjectPtr<GstElement> m_sink;
    mutable bool m_hasEnded = false;
};

Microphone::Microphone(const VoiceFormat &format) : m_format(format)
{
    if (gst_init_check(nullptr, nullptr, nullptr))
        m_pipeline = Pipeline::make(format);
}

Microphone::~Microphone() = default;

bool Microphone::hasFailed() const
{
    return !m_pipeline || m_pipeline->hasEnded();
}

/// Cuts what the encoder gave into pieces; what is left over waits for more.
void Microphone::takeSample(GstSample *sample)
{
    GstBuffer *buffer = gst_sample_get_buffer(sample);
    GstMapInfo map;
    if (!buffer || !gst_buffer_map(buffer, &map, GST_MAP_READ))
        return;
    noteTime(buffer);
    m_rest.insert(m_rest.end(), map.data, map.data + map.size);
    gst_buffer_unmap(buffer, &map);
    const std::size_t size = pieceSize(m_format) ? pieceSize(m_format) : m_rest.size();
    std::size_t used = 0;
    for (; size > 0 && used + size <= m_rest.size(); used += size) {
        const auto begin = m_rest.begin() + static_cast<std::ptrdiff_t>(used);
        base::Bytes sound(begin, begin + static_cast<std::ptrdiff_t>(size));
        if (m_format.codec == VoiceCodec::G726)
            sound = g726WithFirstCodeLow(sound, m_format.bitRate / m_format.rate);
        m_waiting.push_back({std::move(sound), m_time});
        m_time += static_cast<uint64_t>(m_format.rate / piecesPerSecond);
    }
    m_rest.erase(m_rest.begin(), m_rest.begin() + static_cast<std::ptrdiff_t>(used));
}

/// Follows the source where it has left something out.
void Microphone::noteTime(GstBuffer *buffer)
{
    if (!GST_BUFFER_PTS_IS_VALID(buffer))
        return;
    const uint64_t began = GST_BUFFER_PTS(buffer);
    m_firstTime = m_firstTime.value_or(began);
    const auto time = static_cast<int64_t>(gst_util_uint64_scale(
        began - std::min(*m_firstTime, began), static_cast<guint64>(m_format.rate), GST_SECOND));
    const int64_t piece = m_format.rate / piecesPerSecond;
    const std::size_t size = pieceSize(m_format);
    const int64_t expected =
        static_cast<int64_t>(m_time) +
        (size > 0 ? static_cast<int64_t>(m_rest.size()) * piece / static_cast<int64_t>(size) : 0);
    if (size > 0 && std::abs(time - expected) < piece)
        return;
    m_rest.clear();
    m_time = static_cast<uint64_t>(time);
}

std::optional<Microphone::Piece> Microphone::take(std::chrono::milliseconds limit)
{
    if (!m_pipeline)
        return std::nullopt;
    const auto end = base::SteadyClock::now() + limit;
    if (m_waiting.empty()) {
        const SampleRef sample = m_pipeline->pull(limit);
        if (sample)
            takeSample(sample.get());
        if (m_waiting.empty())
            return std::nullopt;
        // What comes alone has been waited for already.
        const auto now = base::SteadyClock::now();
        m_due = m_waiting.size() > 1 ? std::max(m_due, now) : now;
    }
    if (m_due > end) {
        std::this_thread::sleep_until(end);
        return std::nullopt;
    }
    std::this_thread::sleep_until(m_due);
    m_due += pieceLength;
    Piece piece = std::move(m_waiting.front());
    m_waiting.pop_front();
    return piece;
}

} // namespace media
