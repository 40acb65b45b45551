#include "platform/media/decoder_choice.h"

#include "platform/media/video_output.h"

#include <algorithm>
#include <thread>

namespace media {

namespace {

// Below this a software decoder costs less than moving frames to the GPU and back.
constexpr int hardwareWorthPixels = 1280 * 720;
// Up to this one processor core decodes 30 frames a second with time to spare.
constexpr int oneThreadPixels = 1920 * 1088;
constexpr unsigned mostSliceThreads = 4;

int pixels(GstCaps *caps)
{
    int width = 0;
    int height = 0;
    const GstStructure *format = gst_caps_get_structure(caps, 0);
    gst_structure_get_int(format, "width", &width);
    gst_structure_get_int(format, "height", &height);
    return width * height;
}

bool isH264(GstCaps *caps)
{
    return gst_structure_has_name(gst_caps_get_structure(caps, 0), "video/x-h264");
}

const char *softwareDecoderFor(GstCaps *caps)
{
    const GstStructure *format = gst_caps_get_structure(caps, 0);
    if (gst_structure_has_name(format, "video/x-h265"))
        return "avdec_h265";
    if (gst_structure_has_name(format, "image/jpeg"))
        return "avdec_mjpeg";
    return "avdec_h264";
}

GstElement *makeSoftwareDecoder(GstCaps *caps, int pixelCount)
{
    GstElement *decoder = gst_element_factory_make(softwareDecoderFor(caps), nullptr);
    if (!decoder)
        return nullptr;
    // Threads that work on several frames at once delay each frame by as many; threads that share
    // the slices of one do not.
    GObjectClass *kind = G_OBJECT_GET_CLASS(decoder);
    if (g_object_class_find_property(kind, "max-threads")) {
        int threads = 1;
        if (pixelCount > oneThreadPixels)
            threads = static_cast<int>(
                std::clamp(std::thread::hardware_concurrency(), 1u, mostSliceThreads));
        gst_util_set_object_arg(G_OBJECT(decoder), "thread-type", "slice");
        g_object_set(decoder, "max-threads", threads, nullptr);
    }
    // Damaged frames are skipped, however many there are.
    g_object_set(decoder, "max-errors", -1, nullptr);
    return decoder;
}

} // namespace

GstElement *makeDecoder(GstCaps *caps, bool allowHardware, bool &isHardware)
{
    const int pixelCount = pixels(caps);
    isHardware = false;
    if (allowHardware && isH264(caps) && pixelCount >= hardwareWorthPixels) {
        if (GstElement *decoder = makeHardwareDecoder()) {
            isHardware = true;
            return decoder;
        }
    }
    return makeSoftwareDecoder(caps, pixelCount);
}

GstElement *makeStillDecoder(GstCaps *caps)
{
    return makeSoftwareDecoder(caps, 0);
}

} // namespace media
