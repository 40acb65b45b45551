#include "platform/media/audio_codec.h"

namespace media {

namespace {

constexpr int silentPiecesPerSecond = 50;

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
    if (gst_structure_has_name(format, "audio/x-raw"))
        return "audioconvert";
    if (gst_structure_has_name(format, "audio/x-adpcm") && isInstalled("avdec_g726"))
        return "avdec_g726";
    if (gst_structure_has_name(format, "audio/x-opus") && isInstalled("opusdec"))
        return "opusdec";
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
            return decoder + " ! audioconvert ! audioresample ! audiorate ! " + encoder +
                   " bitrate=32000 ! aacparse";
    }
    return {};
}

BufferRef silentPiece(GstCaps *caps)
{
    const GstStructure *format = gst_caps_get_structure(caps, 0);
    int rate = 0;
    int channels = 0;
    gst_structure_get_int(format, "rate", &rate);
    gst_structure_get_int(format, "channels", &channels);
    int bytesPerSample = 1;
    guint8 silence = 0;
    if (gst_structure_has_name(format, "audio/x-mulaw"))
        silence = 0xff; // ITU-T G.711 table 2b
    else if (gst_structure_has_name(format, "audio/x-alaw"))
        silence = 0xd5; // ITU-T G.711 table 1b
    else if (gst_structure_has_name(format, "audio/x-raw"))
        bytesPerSample = 2;
    else
        return {};
    const gsize size = static_cast<gsize>(rate / silentPiecesPerSecond) *
                       static_cast<gsize>(channels * bytesPerSample);
    if (size == 0)
        return {};
    GstBuffer *buffer = gst_buffer_new_allocate(nullptr, size, nullptr);
    gst_buffer_memset(buffer, 0, silence, size);
    return BufferRef::adopt(buffer);
}

} // namespace media
