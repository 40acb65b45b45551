#include "tests/e2e/sound_tap.h"

#include <gst/base/gstbasesink.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <deque>
#include <mutex>

namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr int rate = 8000;
constexpr std::size_t heard = rate / 4; // samples that a pitch is read from
constexpr auto silence = std::chrono::milliseconds(500);
constexpr int pitches = 8;

struct Ear
{
    std::atomic<int> devices = 0;
    std::mutex lock;
    std::deque<gint16> samples;         // with the lock
    SteadyClock::time_point lastPlayed; // with the lock
};

Ear &ear()
{
    static Ear theEar;
    return theEar;
}

/// Goertzel's algorithm: power of one frequency.
double power(const std::deque<gint16> &samples, int hertz)
{
    const double factor = 2 * std::cos(2 * M_PI * hertz / rate);
    double last = 0, beforeLast = 0;
    for (const gint16 sample : samples) {
        const double now = sample + factor * last - beforeLast;
        beforeLast = last;
        last = now;
    }
    return last * last + beforeLast * beforeLast - factor * last * beforeLast;
}

gboolean start(GstBaseSink *)
{
    ++ear().devices;
    return TRUE;
}

gboolean stop(GstBaseSink *)
{
    --ear().devices;
    return TRUE;
}

GstFlowReturn render(GstBaseSink *, GstBuffer *buffer)
{
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_READ))
        return GST_FLOW_ERROR;
    const auto *samples = reinterpret_cast<const gint16 *>(map.data);
    {
        const std::lock_guard lock(ear().lock);
        ear().samples.insert(ear().samples.end(), samples, samples + map.size / sizeof *samples);
        while (ear().samples.size() > heard)
            ear().samples.pop_front();
        ear().lastPlayed = SteadyClock::now();
    }
    gst_buffer_unmap(buffer, &map);
    return GST_FLOW_OK;
}

void setUpClass(gpointer type, gpointer)
{
    const auto sink = GST_BASE_SINK_CLASS(type);
    sink->start = start;
    sink->stop = stop;
    sink->render = render;
    GstCaps *caps = gst_caps_new_simple("audio/x-raw", "format", G_TYPE_STRING, "S16LE", "rate",
                                        G_TYPE_INT, rate, "channels", G_TYPE_INT, 1, "layout",
                                        G_TYPE_STRING, "interleaved", nullptr);
    const auto element = GST_ELEMENT_CLASS(type);
    gst_element_class_add_pad_template(
        element, gst_pad_template_new("sink", GST_PAD_SINK, GST_PAD_ALWAYS, caps));
    gst_element_class_set_static_metadata(element, "Sound tap", "Sink/Audio",
                                          "Keeps what would be heard", "Zelvaro");
    gst_caps_unref(caps);
}

} // namespace

void soundtap::listen()
{
    gst_init(nullptr, nullptr);
    const GType type = g_type_register_static_simple(GST_TYPE_BASE_SINK, "ZelvaroSoundTap",
                                                     sizeof(GstBaseSinkClass), setUpClass,
                                                     sizeof(GstBaseSink), nullptr, GTypeFlags(0));
    // The first one that the program requests.
    gst_element_register(nullptr, "pipewiresink", GST_RANK_NONE, type);
}

int soundtap::openDevices()
{
    return ear().devices;
}

int soundtap::pitch()
{
    const std::lock_guard lock(ear().lock);
    if (ear().samples.size() < heard || SteadyClock::now() - ear().lastPlayed > silence)
        return 0;
    int strongest = 0;
    double most = 0;
    for (int i = 0; i < pitches; ++i) {
        const double now = power(ear().samples, pitchOf(i));
        if (now > most) {
            most = now;
            strongest = pitchOf(i);
        }
    }
    return strongest;
}

int soundtap::pitchOf(int camera)
{
    return 220 + 55 * (camera % pitches);
}
