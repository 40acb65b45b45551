#pragma once

#include "platform/media/unit_wrapper.h"
#include "platform/rtsp/h264_bitstream.h"

#include <gst/app/gstappsink.h>

#include <string>
#include <vector>

/// H.264 that was encoded on the spot, as the source of a live stream delivers it.
struct EncodedStream
{
    struct Options
    {
        int frames = 50;
        int width = 320;
        int height = 240;
        int rate = 25;
        int keyDistance = 25;
        std::string encoder = "tune=zerolatency";
        std::string pattern = "ball"; ///< "snow" gives large frames
        GstClockTime start = 0;       ///< presentation time of the first
        uint64_t firstNumber = 1;
    };

    static std::vector<media::AccessUnit> make(const Options &options)
    {
        gst_init(nullptr, nullptr);
        const std::string chain =
            "videotestsrc num-buffers=" + std::to_string(options.frames) +
            " pattern=" + options.pattern +
            " ! video/x-raw,format=I420,width=" + std::to_string(options.width) +
            ",height=" + std::to_string(options.height) +
            ",framerate=" + std::to_string(options.rate) +
            "/1 ! x264enc speed-preset=ultrafast bitrate=1000 threads=1 key-int-max=" +
            std::to_string(options.keyDistance) + " " + options.encoder +
            " ! h264parse ! video/x-h264,stream-format=avc,alignment=au"
            " ! appsink name=sink sync=false";
        GstElement *pipeline = gst_parse_launch(chain.c_str(), nullptr);
        GstElement *sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
        gst_element_set_state(pipeline, GST_STATE_PLAYING);
        std::vector<media::AccessUnit> units;
        media::UnitWrapper wrapper;
        std::shared_ptr<const base::VideoFormat> format;
        GstClockTime first = GST_CLOCK_TIME_NONE;
        for (;;) {
            const auto sample =
                media::SampleRef::adopt(gst_app_sink_pull_sample(GST_APP_SINK(sink)));
            if (!sample)
                break;
            GstBuffer *buffer = gst_sample_get_buffer(sample.get());
            if (!GST_CLOCK_TIME_IS_VALID(first))
                first = GST_BUFFER_PTS(buffer);
            if (!format)
                format = formatOf(gst_sample_get_caps(sample.get()), options);
            base::AccessUnit unit;
            const auto payload = std::make_shared<const base::Bytes>(bytesOf(buffer));
            const rtsp::SliceFacts facts = rtsp::readSliceFacts(*payload);
            unit.payload = payload;
            unit.format = format;
            unit.number = options.firstNumber + units.size();
            unit.time = options.start + GST_BUFFER_PTS(buffer) - first;
            unit.key = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
            unit.reference = facts.reference;
            unit.bipredictive = facts.bipredictive;
            unit.arrived = base::SteadyClock::now();
            units.push_back(wrapper.wrap(unit));
        }
        gst_element_set_state(pipeline, GST_STATE_NULL);
        gst_object_unref(sink);
        gst_object_unref(pipeline);
        return units;
    }

private:
    static base::Bytes bytesOf(GstBuffer *buffer)
    {
        base::Bytes bytes(gst_buffer_get_size(buffer));
        gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
        return bytes;
    }

    static std::shared_ptr<const base::VideoFormat> formatOf(GstCaps *caps, const Options &options)
    {
        const GValue *data = gst_structure_get_value(gst_caps_get_structure(caps, 0), "codec_data");
        base::VideoFormat format;
        format.configuration = bytesOf(gst_value_get_buffer(data));
        format.width = options.width;
        format.height = options.height;
        return std::make_shared<const base::VideoFormat>(std::move(format));
    }
};
