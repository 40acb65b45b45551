#pragma once

#include "platform/rtsp/access_unit_builder.h"

namespace rtsp {

class H265Codec;

/// H.265 (RFC 7798). Where NAL units have decoding order numbers, they are taken in the order in
/// which they were sent.
class H265Depacketizer : public Depacketizer
{
public:
    H265Depacketizer(Client &client, const PayloadFormat &format);

    void take(const MediaPacket &packet) override;
    void restart() override { m_builder.restart(); }
    std::optional<TimePoint> deadline() const override { return m_builder.deadline(); }
    void tick(TimePoint now) override { m_builder.tick(now); }

private:
    void unpack(std::span<const uint8_t> payload);
    void unpackAggregate(std::span<const uint8_t> rest);
    void unpackFragment(std::span<const uint8_t> payload);

    AccessUnitBuilder m_builder;
    const bool m_hasOrder; ///< decoding order numbers are sent
};

} // namespace rtsp
