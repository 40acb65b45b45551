#pragma once

#include "platform/base/access_unit.h"

#include <cstdint>
#include <span>

namespace rtsp {

/// Makes the RTP packets of one medium and the reports about it (RFC 3550 5.1, 6.4.1). Source,
/// first number and first time are chosen at random.
class RtpSender
{
public:
    using TimePoint = base::SteadyClock::time_point;

    RtpSender(int payloadType, int clockRate);

    /// @param ticks of the medium's clock, since its beginning
    [[nodiscard]] base::Bytes packet(std::span<const uint8_t> payload, uint64_t ticks,
                                     TimePoint now);
    [[nodiscard]] bool hasSent() const { return m_packets > 0; }
    /// A sender report and a source description, in one. After the first packet.
    /// @param wallClock ns since 1970, now
    [[nodiscard]] base::Bytes report(TimePoint now, int64_t wallClock) const;

private:
    const uint8_t m_payloadType;
    const int m_clockRate;
    const uint32_t m_source;
    const uint32_t m_firstTime;
    uint16_t m_number; ///< of the next packet
    uint32_t m_lastTime = 0;
    TimePoint m_lastSent;
    uint32_t m_packets = 0;
    uint32_t m_bytes = 0; ///< of payload
};

} // namespace rtsp
