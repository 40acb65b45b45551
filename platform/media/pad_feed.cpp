#include "platform/media/pad_feed.h"

namespace media {

bool PadFeed::connect(GstElement *element)
{
    disconnect();
    m_pad.reset(GST_PAD(gst_object_ref_sink(gst_pad_new(nullptr, GST_PAD_SRC))));
    gst_pad_set_active(m_pad.get(), TRUE);
    const base::GObjectPtr<GstPad> target(gst_element_get_static_pad(element, "sink"));
    return target && gst_pad_link(m_pad.get(), target.get()) == GST_PAD_LINK_OK;
}

void PadFeed::disconnect()
{
    if (!m_pad)
        return;
    gst_pad_set_active(m_pad.get(), FALSE);
    const base::GObjectPtr<GstPad> peer(gst_pad_get_peer(m_pad.get()));
    if (peer)
        gst_pad_unlink(m_pad.get(), peer.get());
    m_pad.reset();
    m_caps = {};
}

GstFlowReturn PadFeed::push(const AccessUnit &unit)
{
    if (!m_pad)
        return GST_FLOW_NOT_LINKED;
    const bool first = !m_caps;
    if (first)
        gst_pad_push_event(m_pad.get(), gst_event_new_stream_start("video"));
    if (first || !gst_caps_is_equal(m_caps.get(), unit.caps.get())) {
        gst_pad_push_event(m_pad.get(), gst_event_new_caps(unit.caps.get()));
        m_caps = unit.caps;
    }
    if (first) {
        GstSegment segment;
        gst_segment_init(&segment, GST_FORMAT_TIME);
        gst_pad_push_event(m_pad.get(), gst_event_new_segment(&segment));
    }
    // A further reference only: decoders need nothing but the presentation time, which differs
    // from the stream's start by a constant.
    return gst_pad_push(m_pad.get(), unit.buffer.newRef());
}

void PadFeed::drain()
{
    if (m_pad)
        gst_pad_push_event(m_pad.get(), gst_event_new_eos());
}

} // namespace media
