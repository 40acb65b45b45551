#include "platform/rtsp/h264_depacketizer.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/h264_codec.h"
#include "platform/rtsp/nal_units.h"

namespace rtsp {

namespace {

// Types beyond those of NAL units (RFC 6184 table 1).
constexpr unsigned lastNalType = 23;
constexpr unsigned stapA = 24;
constexpr unsigned stapB = 25;
constexpr unsigned mtap16 = 26;
constexpr unsigned mtap24 = 27;
constexpr unsigned fuA = 28;
constexpr unsigned fuB = 29;

constexpr uint8_t startBit = 0x80;
constexpr uint8_t endBit = 0x40;
constexpr std::size_t orderSize = 2; ///< bytes of a decoding order number

} // namespace

H264Depacketizer::H264Depacketizer(Client &client, std::string_view spropSets)
    : m_builder(client, std::make_unique<H264Codec>(spropSets))
{
}

void H264Depacketizer::take(const MediaPacket &packet)
{
    m_builder.beginPacket(packet);
    if (!packet.payload.empty())
        unpack(packet.payload);
    m_builder.endPacket();
}

void H264Depacketizer::unpack(std::span<const uint8_t> payload)
{
    if (beginsWithStartCode(payload)) {
        m_builder.addNal(payload);
        return;
    }
    const unsigned type = payload[0] & 0x1f;
    switch (type) {
    case stapA:
        unpackAggregate(restFrom(payload, 1), 0);
        break;
    case stapB:
        unpackAggregate(restFrom(payload, 1 + orderSize), 0);
        break;
    case mtap16:
        unpackAggregate(restFrom(payload, 1 + orderSize), 3);
        break;
    case mtap24:
        unpackAggregate(restFrom(payload, 1 + orderSize), 4);
        break;
    case fuA:
        unpackFragment(payload, false);
        break;
    case fuB:
        unpackFragment(payload, true);
        break;
    default:
        if (type > 0 && type <= lastNalType)
            m_builder.addNal(payload);
        break;
    }
}

/// @param extra bytes between a size and its NAL unit
void H264Depacketizer::unpackAggregate(std::span<const uint8_t> rest, std::size_t extra)
{
    while (rest.size() > 2 + extra) {
        const std::size_t size = read16(rest, 0);
        rest = rest.subspan(2 + extra);
        if (size > rest.size()) {
            m_builder.noteHole();
            return;
        }
        if (size > 0)
            m_builder.addNal(rest.first(size));
        rest = rest.subspan(size);
    }
}

void H264Depacketizer::unpackFragment(std::span<const uint8_t> payload, bool hasOrder)
{
    if (payload.size() < 2)
        return;
    const uint8_t header = payload[1];
    if ((header & startBit) != 0) {
        m_builder.beginNal();
        const auto nalHeader = static_cast<uint8_t>((payload[0] & 0xe0) | (header & 0x1f));
        m_builder.append(std::span(&nalHeader, 1));
    } else if (!m_builder.isInNal()) {
        m_builder.noteHole();
        return;
    }
    m_builder.append(restFrom(payload, hasOrder ? 2 + orderSize : 2));
    if ((header & endBit) != 0)
        m_builder.endNal();
}

} // namespace rtsp
