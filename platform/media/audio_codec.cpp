#include "platform/media/audio_codec.h"

namespace media {

namespace {

bool isAac(GstCaps *caps)
{
    return gst_structure_has_name(gst_caps_get_structure(caps, 0), "audio/mpeg");
}

bool isInstalled(const char *factory)
{
    const base::GObjectPtr<GstElementFactory> found(gst_element_factory_find(factory));
    return found != nullptr;
}

} // namespace

std::string audioDecoderFor(GstCaps *caps)
{
    const GstStructure *format = gst_caps_get_structure(caps, 0);
    if (gst_structure_has_name(format, "audio/x-mulaw"))
        return "mulawdec";
    if (gst_structure_has_name(format, "audio/x-alaw"))
        return "alawdec";
    if (isAac(caps) && isInstalled("avdec_aac"))
        return "aacparse ! avdec_aac";
    return {};
}

std::string audioForMp4(GstCaps *caps)
{
    if (isAac(caps))
        return "aacparse";
    const std::string decoder = audioDecoderFor(caps);
    if (decoder.empty())
        return {};
    for (const char *encoder : {"avenc_aac", "voaacenc"}) {
        if (isInstalled(encoder))
            return decoder + " ! audioconvert ! audioresample ! " + encoder +
                   " bitrate=32000 ! aacparse";
    }
    return {};
}

} // namespace media
