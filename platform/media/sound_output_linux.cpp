#include "platform/media/sound_output.h"

namespace media {

GstElement *makeSoundSink()
{
    // Not the framework's own choice: that tries every sink there is, some of which write to the
    // terminal when they find no device.
    for (const char *factory : {"pipewiresink", "pulsesink", "alsasink"}) {
        GstElement *sink = gst_element_factory_make(factory, nullptr);
        if (!sink)
            continue;
        gst_object_ref_sink(sink);
        if (gst_element_set_state(sink, GST_STATE_READY) != GST_STATE_CHANGE_FAILURE) {
            // Sound is played as it comes, like the picture.
            g_object_set(sink, "sync", FALSE, nullptr);
            g_object_force_floating(G_OBJECT(sink));
            return sink;
        }
        gst_element_set_state(sink, GST_STATE_NULL);
        gst_object_unref(sink);
    }
    return nullptr;
}

} // namespace media
