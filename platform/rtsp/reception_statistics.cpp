#include "platform/rtsp/reception_statistics.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace rtsp {

namespace {

constexpr int jumpOfNumbers = 3000;  ///< more is a new start, not loss (RFC 3550 A.1)
constexpr double maxJitterStep = 10; ///< s; more is a clock that was set

int64_t nanoseconds(base::SteadyClock::duration duration)
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(duration).count();
}

} // namespace

void ReceptionStatistics::note(const RtpPacket &packet, TimePoint arrived)
{
    const int ahead = static_cast<int16_t>(packet.number - static_cast<uint16_t>(m_highest));
    if (m_source != packet.source || ahead > jumpOfNumbers || ahead < -jumpOfNumbers) {
        m_source = packet.source;
        m_first = m_highest = packet.number;
        m_received = m_expectedBefore = m_receivedBefore = 0;
        m_hasTransit = false;
        m_lastReport.reset();
    } else if (ahead > 0) {
        m_highest += static_cast<uint32_t>(ahead);
    }
    ++m_received;

    const auto seconds = static_cast<double>(nanoseconds(arrived.time_since_epoch())) / 1e9;
    const auto ticks =
        static_cast<uint32_t>(static_cast<uint64_t>(std::fmod(seconds * m_rate, 4294967296.0)));
    const uint32_t transit = ticks - packet.time;
    if (m_hasTransit) {
        const double step =
            std::abs(static_cast<double>(static_cast<int32_t>(transit - m_transit)));
        if (step < maxJitterStep * m_rate)
            m_jitter += (step - m_jitter) / 16;
    }
    m_transit = transit;
    m_hasTransit = true;
}

void ReceptionStatistics::noteReport(const SenderReport &report, TimePoint arrived)
{
    m_lastReport = static_cast<uint32_t>(report.ntpTime >> 16);
    m_reportArrived = arrived;
}

std::optional<ReportBlock> ReceptionStatistics::report(TimePoint now)
{
    if (!m_source)
        return std::nullopt;
    const uint32_t expected = m_highest - m_first + 1;
    const auto expectedNow = static_cast<int64_t>(expected - m_expectedBefore);
    const auto lostNow = expectedNow - static_cast<int64_t>(m_received - m_receivedBefore);
    m_expectedBefore = expected;
    m_receivedBefore = m_received;

    constexpr int64_t mostLost = 0x7fffff;
    ReportBlock block;
    block.source = *m_source;
    if (expectedNow > 0 && lostNow > 0)
        block.fractionLost =
            static_cast<uint8_t>(std::min<int64_t>(lostNow * 256 / expectedNow, 255));
    block.lost = static_cast<int32_t>(
        std::clamp(int64_t{expected} - int64_t{m_received}, -mostLost - 1, mostLost));
    block.highestNumber = m_highest;
    block.jitter = static_cast<uint32_t>(m_jitter);
    if (m_lastReport) {
        block.lastReport = *m_lastReport;
        block.delaySinceReport =
            static_cast<uint32_t>(nanoseconds(now - m_reportArrived) / 1000 * 65536 / 1000000);
    }
    return block;
}

base::SteadyClock::duration ReceptionStatistics::jitter() const
{
    return std::chrono::duration_cast<base::SteadyClock::duration>(
        std::chrono::duration<double>(m_jitter / m_rate));
}

} // namespace rtsp
