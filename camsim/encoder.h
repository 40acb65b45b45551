#pragma once

#include "camsim/codecs.h"
#include "camsim/picture.h"

#include <gst/gst.h>
#include <gst/video/video.h>

#include <functional>

namespace camsim {

struct VideoSettings
{
    int width = 640;
    int height = 360;
    int fps = 15;
    int bitrate = 512'000;    ///< bits per second
    double keyInterval = 1.0; ///< seconds
    VideoCodec codec = VideoCodec::H264;
    H264Profile profile = H264Profile::Baseline;
    int bFrames = 0; ///< between two other frames; of H.264, not with Baseline

    int keyDistance() const; ///< frames
};

/// Video encoder without delay, but for B frames. Frames go in on one thread; access units (byte
/// stream with parameter sets before each key frame, or JPEG) come out on the encoder's own
/// streaming thread. The presentation time of a unit less its decoding time tells its reordering.
class Encoder
{
public:
    using Output = std::function<void(GstBuffer *unit, bool isKey)>;

    Encoder(const VideoSettings &settings, Output output);
    ~Encoder();
    Encoder(const Encoder &) = delete;
    Encoder &operator=(const Encoder &) = delete;

    bool isUsable() const { return m_pipeline != nullptr; }
    void encode(const std::function<void(const PictureView &)> &paint);
    /// The next frame becomes a key frame.
    void forceKeyFrame();
    /// Waits until everything that went in has come out.
    void finish();

private:
    static GstFlowReturn takeUnit(GstElement *appsink, gpointer self);

    Output m_output;
    GstVideoInfo m_info{};
    GstElement *m_pipeline = nullptr;
    GstElement *m_source = nullptr;
    GstElement *m_encoder = nullptr;
    GstClockTime m_frameTime;
    guint64 m_frames = 0;
};

} // namespace camsim
