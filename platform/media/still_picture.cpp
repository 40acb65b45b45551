#include "platform/media/still_picture.h"

#include "platform/media/decoder_choice.h"
#include "platform/media/pad_feed.h"
#include "platform/media/part_file.h"
#include "platform/media/worker_pool.h"

#include <gst/video/video.h>

namespace media {

namespace {

constexpr GstClockTime jpegTimeout = 5 * GST_SECOND;

/// A separate decoder, between two pads that belong to the caller.
class StillDecoder
{
public:
    explicit StillDecoder(GstCaps *caps)
    {
        m_decoder.reset(makeStillDecoder(caps));
        if (!m_decoder)
            return;
        gst_object_ref_sink(m_decoder.get());
        m_output.reset(GST_PAD(gst_object_ref_sink(gst_pad_new(nullptr, GST_PAD_SINK))));
        gst_pad_set_chain_function_full(m_output.get(), &StillDecoder::take, this, nullptr);
        gst_pad_set_active(m_output.get(), TRUE);
        const base::GObjectPtr<GstPad> source(gst_element_get_static_pad(m_decoder.get(), "src"));
        gst_pad_link(source.get(), m_output.get());
        m_feed.connect(m_decoder.get());
        gst_element_set_state(m_decoder.get(), GST_STATE_PLAYING);
    }

    ~StillDecoder()
    {
        if (!m_decoder)
            return;
        m_feed.disconnect();
        gst_element_set_state(m_decoder.get(), GST_STATE_NULL);
        gst_pad_set_active(m_output.get(), FALSE);
        const base::GObjectPtr<GstPad> source(gst_element_get_static_pad(m_decoder.get(), "src"));
        gst_pad_unlink(source.get(), m_output.get());
    }

    bool push(const AccessUnit &unit) { return m_decoder && m_feed.push(unit) == GST_FLOW_OK; }
    void drain() { m_feed.drain(); }
    const SampleRef &picture() const { return m_picture; }

private:
    static GstFlowReturn take(GstPad *pad, GstObject *, GstBuffer *buffer)
    {
        auto *self = static_cast<StillDecoder *>(pad->chaindata);
        const auto caps = CapsRef::adopt(gst_pad_get_current_caps(pad));
        self->m_picture = SampleRef::adopt(gst_sample_new(buffer, caps.get(), nullptr, nullptr));
        gst_buffer_unref(buffer);
        return GST_FLOW_OK;
    }

    base::GObjectPtr<GstElement> m_decoder;
    base::GObjectPtr<GstPad> m_output;
    PadFeed m_feed;
    SampleRef m_picture;
};

int store(const void *data, size_t size, const std::string &path)
{
    // Not flushed: a caller may wait, and a power failure costs no more than this picture.
    PartFile file(path);
    file.write(data, size);
    return file.putInPlace() ? 0 : -1;
}

} // namespace

SampleRef decodeLast(const std::vector<AccessUnit> &units, std::chrono::milliseconds budget)
{
    if (units.empty())
        return {};
    loadMediaFramework();
    StillDecoder decoder(units.front().caps.get());
    const auto end = SteadyClock::now() + budget;
    for (const AccessUnit &unit : units)
        if (!decoder.push(unit) || SteadyClock::now() >= end)
            break;
    decoder.drain();
    return decoder.picture();
}

int writeJpeg(const SampleRef &picture, const std::string &path)
{
    if (!picture)
        return -1;
    const auto caps = CapsRef::adopt(gst_caps_new_empty_simple("image/jpeg"));
    GError *error = nullptr;
    const auto jpeg =
        SampleRef::adopt(gst_video_convert_sample(picture.get(), caps.get(), jpegTimeout, &error));
    if (!jpeg) {
        g_log("cammgr", G_LOG_LEVEL_WARNING, "no still picture: %s",
              error ? error->message : "unknown");
        g_clear_error(&error);
        return -1;
    }
    GstBuffer *buffer = gst_sample_get_buffer(jpeg.get());
    GstMapInfo map;
    if (!buffer || !gst_buffer_map(buffer, &map, GST_MAP_READ))
        return -1;
    const int result = store(map.data, map.size, path);
    gst_buffer_unmap(buffer, &map);
    return result;
}

int storeJpeg(const std::string &jpeg, const std::string &path)
{
    return store(jpeg.data(), jpeg.size(), path);
}

} // namespace media
