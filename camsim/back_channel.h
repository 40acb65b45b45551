#pragma once

#include <gst/gst.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace camsim {

/// Keeps what clients say to a camera (PCMU over the ONVIF back channel). Any thread.
class BackChannel : public std::enable_shared_from_this<BackChannel>
{
public:
    struct Report
    {
        std::uint64_t packets = 0;
        std::uint64_t bytes = 0;
        double level = 0; ///< RMS of all samples as a part of full scale, 0 to 1
    };

    /// A media whose appsink hands out mu-law data. It shares this object.
    void attach(GstElement *appsink);
    void hear(const std::uint8_t *data, std::size_t size);
    Report report() const;
    /// The last second of what was heard, oldest first, as mu-law.
    std::vector<std::uint8_t> lastSecond() const;
    void clear();

private:
    mutable std::mutex m_mutex; // protects everything below
    Report m_report;
    double m_squares = 0;
    std::vector<std::uint8_t> m_heard;
};

} // namespace camsim
