#include "platform/media/picture_chain.h"

#include "platform/media/decoder_choice.h"
#include "platform/media/video_output.h"

#include <gst/video/videooverlay.h>

#include <cstdlib>

namespace media {

namespace {

// A window that was laid out for the stream differs from its shape by what integer division cut.
constexpr int roundingPixels = 2;

} // namespace

PictureChain::~PictureChain()
{
    close();
}

bool PictureChain::open()
{
    close();
    m_failed = false;
    m_pipeline.reset(GST_ELEMENT(gst_object_ref_sink(gst_pipeline_new(nullptr))));
    m_scale = gst_element_factory_make("videoscale", nullptr);
    GstElement *convert = gst_element_factory_make("videoconvert", nullptr);
    m_sink = makeWindowSink(m_window);
    if (!m_scale || !convert || !m_sink) {
        for (GstElement *element : {m_scale, convert, m_sink})
            if (element)
                gst_object_unref(gst_object_ref_sink(element));
        m_pipeline.reset();
        return false;
    }
    // Scaling first: there is less to convert.
    gst_bin_add_many(GST_BIN(m_pipeline.get()), m_scale, convert, m_sink, nullptr);
    gst_element_link_many(m_scale, convert, m_sink, nullptr);
    const base::GObjectPtr<GstBus> bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), &PictureChain::readMessage, this, nullptr);
    if (gst_element_set_state(m_pipeline.get(), GST_STATE_PLAYING) == GST_STATE_CHANGE_FAILURE) {
        close();
        return false;
    }
    return true;
}

void PictureChain::close()
{
    if (!m_pipeline)
        return;
    m_feed.disconnect();
    const base::GObjectPtr<GstBus> bus(gst_element_get_bus(m_pipeline.get()));
    gst_bus_set_sync_handler(bus.get(), nullptr, nullptr, nullptr);
    gst_bus_set_flushing(bus.get(), TRUE);
    gst_element_set_state(m_pipeline.get(), GST_STATE_NULL);
    m_pipeline.reset();
    m_decoder = m_scale = m_sink = nullptr;
}

bool PictureChain::addDecoder(GstCaps *caps)
{
    m_decoder = makeDecoder(caps, !m_hardwareFailed, m_hardware);
    if (!m_decoder)
        return false;
    {
        std::lock_guard lock(m_pictureMutex);
        m_decoderName = GST_OBJECT_NAME(gst_element_get_factory(m_decoder));
    }
    gst_bin_add(GST_BIN(m_pipeline.get()), m_decoder);
    if (!gst_element_link(m_decoder, m_scale) || !m_feed.connect(m_decoder))
        return false;
    const base::GObjectPtr<GstPad> pad(gst_element_get_static_pad(m_decoder, "src"));
    gst_pad_add_probe(pad.get(), GST_PAD_PROBE_TYPE_BUFFER, &PictureChain::takePicture, this,
                      nullptr);
    return gst_element_sync_state_with_parent(m_decoder);
}

bool PictureChain::decode(const AccessUnit &unit, bool show)
{
    if (!m_pipeline || (!m_decoder && !addDecoder(unit.caps.get())))
        return false;
    m_show = show;
    const GstFlowReturn flow = m_feed.push(unit);
    if (flow == GST_FLOW_OK && !m_failed)
        return true;
    if (m_hardware) {
        g_log("cammgr", G_LOG_LEVEL_MESSAGE, "decoding on the GPU failed; going on in software");
        m_hardwareFailed = true;
    }
    return false;
}

void PictureChain::setWindowSize(int width, int height)
{
    m_windowWidth = width;
    m_windowHeight = height;
    if (m_scale)
        fit();
}

void PictureChain::redraw()
{
    if (!m_sink)
        return;
    gst_video_overlay_expose(GST_VIDEO_OVERLAY(m_sink));
    BufferRef picture;
    {
        std::lock_guard lock(m_pictureMutex);
        picture = m_picture;
    }
    if (!picture || !m_decoder)
        return;
    m_show = true;
    const base::GObjectPtr<GstPad> pad(gst_element_get_static_pad(m_decoder, "src"));
    gst_pad_push(pad.get(), picture.newRef());
}

/// A window whose shape is the picture's but for rounding is filled to its edge; in any other the
/// picture keeps its shape between black bars.
void PictureChain::fit()
{
    int width = 0;
    int height = 0;
    {
        std::lock_guard lock(m_pictureMutex);
        if (m_pictureCaps) {
            const GstStructure *format = gst_caps_get_structure(m_pictureCaps.get(), 0);
            gst_structure_get_int(format, "width", &width);
            gst_structure_get_int(format, "height", &height);
        }
    }
    const bool sameShape =
        width > 0 && height > 0 &&
        (std::abs(m_windowHeight - m_windowWidth * height / width) <= roundingPixels ||
         std::abs(m_windowWidth - m_windowHeight * width / height) <= roundingPixels);
    g_object_set(m_scale, "add-borders", !sameShape, nullptr);
}

SampleRef PictureChain::latest() const
{
    std::lock_guard lock(m_pictureMutex);
    if (!m_picture)
        return {};
    return SampleRef::adopt(gst_sample_new(m_picture.get(), m_pictureCaps.get(), nullptr, nullptr));
}

std::string PictureChain::decoderName() const
{
    std::lock_guard lock(m_pictureMutex);
    return m_decoderName;
}

GstBusSyncReply PictureChain::readMessage(GstBus *, GstMessage *message, gpointer self)
{
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR)
        static_cast<PictureChain *>(self)->m_failed = true;
    gst_message_unref(message);
    return GST_BUS_DROP;
}

GstPadProbeReturn PictureChain::takePicture(GstPad *pad, GstPadProbeInfo *info, gpointer self)
{
    auto *chain = static_cast<PictureChain *>(self);
    GstBuffer *buffer = GST_PAD_PROBE_INFO_BUFFER(info);
    auto caps = CapsRef::adopt(gst_pad_get_current_caps(pad));
    bool newShape = false;
    {
        std::lock_guard lock(chain->m_pictureMutex);
        newShape = chain->m_pictureCaps.get() != caps.get();
        chain->m_picture = BufferRef::share(buffer);
        chain->m_pictureCaps = std::move(caps);
    }
    if (newShape)
        chain->fit();
    if (!chain->m_show)
        return GST_PAD_PROBE_DROP;
    ++chain->m_drawn;
    return GST_PAD_PROBE_OK;
}

} // namespace media
