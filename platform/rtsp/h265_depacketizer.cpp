#include "platform/rtsp/h265_depacketizer.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/h265_codec.h"
#include "platform/rtsp/nal_units.h"
#include "platform/rtsp/session_description.h"

#include <array>

namespace rtsp {

namespace {

// Types beyond those of NAL units (RFC 7798 4.4).
constexpr unsigned lastNalType = 47;
constexpr unsigned aggregate = 48;
constexpr unsigned fragment = 49;

constexpr uint8_t startBit = 0x80;
constexpr uint8_t endBit = 0x40;
constexpr std::size_t orderSize = 2; ///< bytes of a decoding order number

std::unique_ptr<NalCodec> makeCodec(const PayloadFormat &format)
{
    auto codec = std::make_unique<H265Codec>();
    for (const char *name : {"sprop-vps", "sprop-sps", "sprop-pps"})
        if (const std::string *sets = format.parameter(name))
            codec->addSets(*sets);
    return codec;
}

} // namespace

H265Depacketizer::H265Depacketizer(Client &client, const PayloadFormat &format)
    : m_builder(client, makeCodec(format))
    , m_hasOrder(format.number("sprop-max-don-diff").value_or(0) > 0)
{
}

void H265Depacketizer::take(const MediaPacket &packet)
{
    m_builder.beginPacket(packet);
    unpack(packet.payload);
    m_builder.endPacket();
}

void H265Depacketizer::unpack(std::span<const uint8_t> payload)
{
    if (payload.size() <= h265HeaderSize)
        return;
    if (beginsWithStartCode(payload)) {
        m_builder.addNal(payload);
        return;
    }
    const unsigned type = payload[0] >> 1 & 0x3f;
    if (type == aggregate) {
        unpackAggregate(payload.subspan(h265HeaderSize));
    } else if (type == fragment) {
        unpackFragment(payload);
    } else if (type <= lastNalType) {
        m_builder.beginNal();
        m_builder.append(payload.first(h265HeaderSize));
        m_builder.append(restFrom(payload, h265HeaderSize + (m_hasOrder ? orderSize : 0)));
        m_builder.endNal();
    }
}

void H265Depacketizer::unpackAggregate(std::span<const uint8_t> rest)
{
    std::size_t extra = m_hasOrder ? orderSize : 0;
    while (rest.size() > extra + 2) {
        rest = rest.subspan(extra);
        const std::size_t size = read16(rest, 0);
        rest = rest.subspan(2);
        if (size > rest.size()) {
            m_builder.noteHole();
            return;
        }
        if (size > 0)
            m_builder.addNal(rest.first(size));
        rest = rest.subspan(size);
        extra = m_hasOrder ? 1 : 0; // the others have their difference
    }
}

void H265Depacketizer::unpackFragment(std::span<const uint8_t> payload)
{
    const uint8_t header = payload[h265HeaderSize];
    std::size_t content = h265HeaderSize + 1;
    if ((header & startBit) != 0) {
        m_builder.beginNal();
        const std::array<uint8_t, h265HeaderSize> nalHeader = {
            static_cast<uint8_t>((payload[0] & 0x81) | (header & 0x3f) << 1), payload[1]};
        m_builder.append(nalHeader);
        content += m_hasOrder ? orderSize : 0;
    } else if (!m_builder.isInNal()) {
        m_builder.noteHole();
        return;
    }
    m_builder.append(restFrom(payload, content));
    if ((header & endBit) != 0)
        m_builder.endNal();
}

} // namespace rtsp
