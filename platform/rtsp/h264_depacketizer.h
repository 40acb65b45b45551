#pragma once

#include "platform/rtsp/access_unit_builder.h"

#include <string_view>

namespace rtsp {

/// H.264 (RFC 6184) in every packetization mode. Packets of the interleaved mode are taken in the
/// order in which they were sent.
class H264Depacketizer : public Depacketizer
{
public:
    H264Depacketizer(Client &client, std::string_view spropSets);

    void take(const MediaPacket &packet) override;
    void restart() override { m_builder.restart(); }
    std::optional<TimePoint> deadline() const override { return m_builder.deadline(); }
    void tick(TimePoint now) override { m_builder.tick(now); }

private:
    void unpack(std::span<const uint8_t> payload);
    void unpackAggregate(std::span<const uint8_t> rest, std::size_t extra);
    void unpackFragment(std::span<const uint8_t> payload, bool hasOrder);

    AccessUnitBuilder m_builder;
};

} // namespace rtsp
