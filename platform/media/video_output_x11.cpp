#include "platform/media/video_output.h"

#include "platform/media/x_errors.h"

#include <gst/video/videooverlay.h>

#include <glob.h>

namespace media {

namespace {

bool hasRenderNode()
{
    glob_t nodes = {};
    const bool found = glob("/dev/dri/renderD*", GLOB_NOSORT, nullptr, &nodes) == 0;
    globfree(&nodes);
    return found;
}

} // namespace

GstElement *makeWindowSink(uintptr_t window)
{
    surviveXErrors();
    // Of the sinks for X only this one exists on every display, draws into the very window it is
    // given and has no limit on how many there are.
    GstElement *sink = gst_element_factory_make("ximagesink", nullptr);
    if (!sink)
        return nullptr;
    // The client has the window's events; a thread for each sink is saved on top.
    g_object_set(sink, "sync", FALSE, "async", FALSE, "qos", FALSE, "enable-last-sample", FALSE,
                 "handle-events", FALSE, "handle-expose", FALSE, nullptr);
    gst_video_overlay_set_window_handle(GST_VIDEO_OVERLAY(sink), window);
    return sink;
}

GstElement *makeHardwareDecoder()
{
    static const bool renderNode = hasRenderNode();
    if (!renderNode)
        return nullptr;
    // It has no rank in this version of the framework: nobody but us would choose it.
    GstElement *decoder = gst_element_factory_make("vah264dec", nullptr);
    if (!decoder)
        return nullptr;
    const bool ready = gst_element_set_state(decoder, GST_STATE_READY) != GST_STATE_CHANGE_FAILURE;
    if (!ready) {
        gst_element_set_state(decoder, GST_STATE_NULL);
        gst_object_unref(gst_object_ref_sink(decoder));
        return nullptr;
    }
    // Left alone it takes the stream for a file, as nothing around it indicates that it is live,
    // and holds back as many pictures as the level allows: 4 at 1080p, up to 16.
    if (g_object_class_find_property(G_OBJECT_GET_CLASS(decoder), "compliance"))
        gst_util_set_object_arg(G_OBJECT(decoder), "compliance", "normal");
    return decoder;
}

} // namespace media
