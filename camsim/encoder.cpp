#include "camsim/encoder.h"

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace camsim {

namespace {

std::string rateAndDistance(const VideoSettings &settings)
{
    return "bitrate=" + std::to_string(std::max(1, settings.bitrate / 1000)) +
           " key-int-max=" + std::to_string(settings.keyDistance());
}

std::string describeH264(const VideoSettings &settings)
{
    std::string encoder = "x264enc name=encoder threads=1 byte-stream=true ";
    // Without B frames nothing has to wait for a later frame.
    if (settings.bFrames == 0)
        encoder += "tune=zerolatency ";
    else
        encoder += "b-adapt=false rc-lookahead=0 sync-lookahead=0 mb-tree=false bframes=" +
                   std::to_string(settings.bFrames) + ' ';
    encoder += "speed-preset=ultrafast " + rateAndDistance(settings);
    std::string format = "video/x-h264,stream-format=byte-stream,alignment=au";
    if (settings.profile == H264Profile::Main) {
        encoder += " option-string=cabac=1";
        format += ",profile=main";
    } else if (settings.profile == H264Profile::High) {
        encoder += " option-string=cabac=1:8x8dct=1";
        format += ",profile=high";
    }
    return encoder + " ! " + format;
}

std::string describeH265(const VideoSettings &settings)
{
    // Its pool would have a thread for each processor and camera.
    return "x265enc name=encoder tune=zerolatency speed-preset=ultrafast "
           "option-string=pools=none:frame-threads=1:repeat-headers=1:log-level=0 " +
           rateAndDistance(settings) + " ! video/x-h265,stream-format=byte-stream,alignment=au";
}

std::string describeEncoder(const VideoSettings &settings)
{
    switch (settings.codec) {
    case VideoCodec::H265:
        return describeH265(settings);
    case VideoCodec::Mjpeg:
        return "jpegenc name=encoder quality=60";
    case VideoCodec::H264:
        break;
    }
    return describeH264(settings);
}

std::string describePipeline(const VideoSettings &settings)
{
    return "appsrc name=source format=time block=true max-buffers=4 ! " +
           describeEncoder(settings) +
           " ! appsink name=sink sync=false async=false emit-signals=false";
}

} // namespace

int VideoSettings::keyDistance() const
{
    return std::max(1, static_cast<int>(std::lround(keyInterval * fps)));
}

Encoder::Encoder(const VideoSettings &settings, Output output)
    : m_output(std::move(output))
    , m_frameTime(gst_util_uint64_scale_int(GST_SECOND, 1, settings.fps))
{
    GError *error = nullptr;
    m_pipeline = gst_parse_launch(describePipeline(settings).c_str(), &error);
    if (error) {
        g_warning("no video encoder: %s", error->message);
        g_clear_error(&error);
        gst_clear_object(&m_pipeline);
        return;
    }
    m_source = gst_bin_get_by_name(GST_BIN(m_pipeline), "source");
    m_encoder = gst_bin_get_by_name(GST_BIN(m_pipeline), "encoder");

    gst_video_info_set_format(&m_info, GST_VIDEO_FORMAT_I420, static_cast<guint>(settings.width),
                              static_cast<guint>(settings.height));
    m_info.fps_n = settings.fps;
    m_info.fps_d = 1;
    GstCaps *caps = gst_video_info_to_caps(&m_info);
    gst_app_src_set_caps(GST_APP_SRC(m_source), caps);
    gst_caps_unref(caps);

    GstElement *sink = gst_bin_get_by_name(GST_BIN(m_pipeline), "sink");
    GstAppSinkCallbacks callbacks{};
    callbacks.new_sample = [](GstAppSink *from, gpointer self) {
        return takeUnit(GST_ELEMENT(from), self);
    };
    gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
    gst_object_unref(sink);
    gst_element_set_state(m_pipeline, GST_STATE_PLAYING);
}

Encoder::~Encoder()
{
    if (!m_pipeline)
        return;
    gst_element_set_state(m_pipeline, GST_STATE_NULL);
    gst_object_unref(m_source);
    gst_object_unref(m_encoder);
    gst_object_unref(m_pipeline);
}

GstFlowReturn Encoder::takeUnit(GstElement *appsink, gpointer self)
{
    GstSample *sample = gst_app_sink_pull_sample(GST_APP_SINK(appsink));
    if (!sample)
        return GST_FLOW_EOS;
    GstBuffer *unit = gst_sample_get_buffer(sample);
    const bool isKey = !GST_BUFFER_FLAG_IS_SET(unit, GST_BUFFER_FLAG_DELTA_UNIT);
    static_cast<Encoder *>(self)->m_output(unit, isKey);
    gst_sample_unref(sample);
    return GST_FLOW_OK;
}

void Encoder::encode(const std::function<void(const PictureView &)> &paint)
{
    if (!m_pipeline)
        return;
    GstBuffer *buffer = gst_buffer_new_allocate(nullptr, m_info.size, nullptr);
    GstMapInfo map;
    if (!gst_buffer_map(buffer, &map, GST_MAP_WRITE)) {
        gst_buffer_unref(buffer);
        return;
    }
    PictureView view;
    view.width = m_info.width;
    view.height = m_info.height;
    view.luma = map.data + m_info.offset[0];
    view.cb = map.data + m_info.offset[1];
    view.cr = map.data + m_info.offset[2];
    view.lumaStride = m_info.stride[0];
    view.chromaStride = m_info.stride[1];
    paint(view);
    gst_buffer_unmap(buffer, &map);
    GST_BUFFER_PTS(buffer) = m_frames++ * m_frameTime;
    GST_BUFFER_DURATION(buffer) = m_frameTime;
    gst_app_src_push_buffer(GST_APP_SRC(m_source), buffer);
}

void Encoder::forceKeyFrame()
{
    if (!m_pipeline)
        return;
    gst_element_send_event(
        m_encoder, gst_video_event_new_upstream_force_key_unit(GST_CLOCK_TIME_NONE, TRUE, 0));
}

void Encoder::finish()
{
    if (!m_pipeline)
        return;
    gst_app_src_end_of_stream(GST_APP_SRC(m_source));
    GstBus *bus = gst_element_get_bus(m_pipeline);
    GstMessage *message = gst_bus_timed_pop_filtered(
        bus, 60 * GST_SECOND, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
    if (message)
        gst_message_unref(message);
    gst_object_unref(bus);
}

} // namespace camsim
