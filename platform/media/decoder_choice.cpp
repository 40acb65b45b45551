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

GstElement *makeSoftwareDecoder(int pixelCount)
{
    GstElement *decoder = gst_element_factory_make("avdec_h264", nullptr);
    if (!decoder)
        return nullptr;
    // Threads that work on several frames at once delay each frame by as many; threads that share
    // the slices of one do not.
    int threads = 1;
    if (pixelCount > oneThreadPixels)
        threads =
            static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, mostSliceThreads));
    gst_util_set_object_arg(G_OBJECT(decoder), "thread-type", "slice");
    // Damaged frames are skipped, however many there are.
    g_object_set(decoder, "max-threads", threads, "max-errors", -1, nullptr);
    return decoder;
}

} // namespace

GstElement *makeDecoder(GstCaps *caps, bool allowHardware, bool &isHardware)
{
    const int pixelCount = pixels(caps);
    isHardware = false;
    if (allowHardware && pixelCount >= hardwareWorthPixels) {
        if (GstElement *decoder = makeHardwareDecoder()) {
            isHardware = true;
            return decoder;
        }
    }
    return makeSoftwareDecoder(pixelCount);
}

} // namespace media
