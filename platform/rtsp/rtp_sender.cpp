#include "platform/rtsp/rtp_sender.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/rtcp.h"

#include <chrono>
#include <random>

namespace rtsp {
namespace {

constexpr uint8_t version = 0x80;
constexpr uint8_t markerBit = 0x80;
constexpr int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr uint64_t from1900To1970 = 2'208'988'800; // seconds

uint32_t randomNumber()
{
    return std::random_device()();
}

/// As sender reports have it: seconds since 1900, with 32 bits behind the point.
uint64_t ntpTimeOf(int64_t nanosecondsSince1970)
{
    const auto seconds = static_cast<uint64_t>(nanosecondsSince1970 / nanosecondsPerSecond);
    const auto rest = static_cast<uint64_t>(nanosecondsSince1970 % nanosecondsPerSecond);
    return (seconds + from1900To1970) << 32 | (rest << 32) / nanosecondsPerSecond;
}

} // namespace

RtpSender::RtpSender(int payloadType, int clockRate)
    : m_payloadType(static_cast<uint8_t>(payloadType))
    , m_clockRate(clockRate)
    , m_source(randomNumber())
    , m_firstTime(randomNumber())
    , m_number(static_cast<uint16_t>(randomNumber()))
{
}

base::Bytes RtpSender::packet(std::span<const uint8_t> payload, uint64_t ticks, TimePoint now)
{
    m_lastTime = m_firstTime + static_cast<uint32_t>(ticks);
    m_lastSent = now;
    base::Bytes bytes;
    bytes.push_back(version);
    // Sound that begins is marked (RFC 3551 4.1).
    bytes.push_back(hasSent() ? m_payloadType : m_payloadType | markerBit);
    append(bytes, m_number++, 2);
    append(bytes, m_lastTime, 4);
    append(bytes, m_source, 4);
    bytes.insert(bytes.end(), payload.begin(), payload.end());
    ++m_packets;
    m_bytes += static_cast<uint32_t>(payload.size());
    return bytes;
}

base::Bytes RtpSender::report(TimePoint now, int64_t wallClock) const
{
    const int64_t since =
        std::chrono::duration_cast<std::chrono::nanoseconds>(now - m_lastSent).count();
    const auto passed = static_cast<uint32_t>(since * m_clockRate / nanosecondsPerSecond);
    return makeSenderReport({m_source, ntpTimeOf(wallClock), m_lastTime + passed}, ownName,
                            m_packets, m_bytes);
}

} // namespace rtsp
