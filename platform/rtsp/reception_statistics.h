#pragma once

#include "platform/base/access_unit.h"
#include "platform/rtsp/rtcp.h"
#include "platform/rtsp/rtp_packet.h"

#include <cstdint>
#include <optional>

namespace rtsp {

/// Counts the packets of one source as they arrive, and reports them (RFC 3550 6.4.1 and A.3). Not
/// thread-safe.
class ReceptionStatistics
{
public:
    using TimePoint = base::SteadyClock::time_point;

    /// @param rate of the RTP clock, ticks a second
    explicit ReceptionStatistics(int rate) : m_rate(rate) {}

    void note(const RtpPacket &packet, TimePoint arrived);
    void noteReport(const SenderReport &report, TimePoint arrived);
    /// nullopt before the first packet. The next report counts from here.
    [[nodiscard]] std::optional<ReportBlock> report(TimePoint now);
    [[nodiscard]] base::SteadyClock::duration jitter() const;

private:
    const int m_rate;
    std::optional<uint32_t> m_source;
    uint32_t m_first = 0;
    uint32_t m_highest = 0; ///< with wraps
    uint32_t m_received = 0;
    uint32_t m_expectedBefore = 0;
    uint32_t m_receivedBefore = 0;
    bool m_hasTransit = false;
    uint32_t m_transit = 0; ///< ticks
    double m_jitter = 0;    ///< ticks
    std::optional<uint32_t> m_lastReport;
    TimePoint m_reportArrived;
};

} // namespace rtsp
