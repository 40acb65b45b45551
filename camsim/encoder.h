#pragma once

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

    int keyDistance() const; ///< frames
};

/// H.264 encoder without delay. Frames go in on one thread; access units (byte stream, parameter
/// sets before each key frame) come out on the encoder's own streaming thread.
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
