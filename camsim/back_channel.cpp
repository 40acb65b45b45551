#include "camsim/back_channel.h"

#include "camsim/tone.h"

#include <gst/app/gstappsink.h>

#include <algorithm>
#include <cmath>

namespace camsim {

namespace {

using Shared = std::shared_ptr<BackChannel>;

constexpr std::size_t second = 8000;

GstFlowReturn onSample(GstAppSink *sink, gpointer self)
{
    GstSample *sample = gst_app_sink_pull_sample(sink);
    if (!sample)
        return GST_FLOW_EOS;
    GstMapInfo map;
    GstBuffer *buffer = gst_sample_get_buffer(sample);
    if (gst_buffer_map(buffer, &map, GST_MAP_READ)) {
        (*static_cast<Shared *>(self))->hear(map.data, map.size);
        gst_buffer_unmap(buffer, &map);
    }
    gst_sample_unref(sample);
    return GST_FLOW_OK;
}

} // namespace

void BackChannel::attach(GstElement *appsink)
{
    GstAppSinkCallbacks callbacks{};
    callbacks.new_sample = onSample;
    gst_app_sink_set_callbacks(GST_APP_SINK(appsink), &callbacks, new Shared(shared_from_this()),
                               [](gpointer data) { delete static_cast<Shared *>(data); });
}

void BackChannel::hear(const std::uint8_t *data, std::size_t size)
{
    const std::lock_guard lock(m_mutex);
    ++m_report.packets;
    m_report.bytes += size;
    for (std::size_t i = 0; i < size; ++i) {
        const double sample = decodeMuLaw(data[i]) / 32768.0;
        m_squares += sample * sample;
    }
    m_heard.insert(m_heard.end(), data, data + size);
    if (m_heard.size() > 4 * second)
        m_heard.erase(m_heard.begin(), m_heard.end() - std::ptrdiff_t{second});
}

BackChannel::Report BackChannel::report() const
{
    const std::lock_guard lock(m_mutex);
    Report report = m_report;
    if (report.bytes > 0)
        report.level = std::sqrt(m_squares / static_cast<double>(report.bytes));
    return report;
}

std::vector<std::uint8_t> BackChannel::lastSecond() const
{
    const std::lock_guard lock(m_mutex);
    const std::size_t count = std::min(m_heard.size(), second);
    return {m_heard.end() - static_cast<std::ptrdiff_t>(count), m_heard.end()};
}

void BackChannel::clear()
{
    const std::lock_guard lock(m_mutex);
    m_report = {};
    m_squares = 0;
    m_heard.clear();
}

} // namespace camsim
