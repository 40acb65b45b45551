#include "platform/rtsp/audio_depacketizer.h"

#include "platform/rtsp/bit_reader.h"

namespace rtsp {

namespace {

base::AudioCodec codecOf(PayloadKind kind)
{
    switch (kind) {
    case PayloadKind::Pcma:
        return base::AudioCodec::Pcma;
    case PayloadKind::G726:
        return base::AudioCodec::G726;
    case PayloadKind::L16:
        return base::AudioCodec::L16;
    case PayloadKind::Opus:
        return base::AudioCodec::Opus;
    default:
        return base::AudioCodec::Pcmu;
    }
}

} // namespace

AudioDepacketizer::AudioDepacketizer(Client &client, PayloadKind kind, const PayloadFormat &format)
    : m_client(client)
    , m_isBigEndian(kind == PayloadKind::G726 && format.encoding.rfind("AAL2", 0) == 0)
{
    auto made = std::make_shared<base::AudioFormat>();
    made->codec = codecOf(kind);
    made->rate = clockRateOf(kind, format);
    made->channels = format.channels;
    if (kind == PayloadKind::G726)
        made->bitsPerSample = bitsOfG726(format);
    if (kind == PayloadKind::L16)
        m_sampleSize = 2 * static_cast<std::size_t>(format.channels);
    m_format = std::move(made);
}

void AudioDepacketizer::take(const MediaPacket &packet)
{
    if (packet.afterGap)
        m_client.onDamaged();
    const std::span<const uint8_t> bytes =
        packet.payload.first(packet.payload.size() - packet.payload.size() % m_sampleSize);
    if (bytes.empty())
        return;
    AudioPiece piece;
    if (m_isBigEndian)
        piece.payload = repackG726(bytes, static_cast<unsigned>(m_format->bitsPerSample));
    else
        piece.payload.assign(bytes.begin(), bytes.end());
    piece.format = m_format;
    piece.time = packet.time;
    piece.arrived = packet.arrived;
    m_client.onPiece(std::move(piece));
}

base::Bytes repackG726(std::span<const uint8_t> bytes, unsigned bits)
{
    BitReader reader(bytes);
    base::Bytes repacked;
    repacked.reserve(bytes.size());
    unsigned buffer = 0;
    unsigned filled = 0;
    while (reader.left() >= bits) {
        buffer |= reader.bits(static_cast<int>(bits)) << filled;
        filled += bits;
        if (filled < 8)
            continue;
        repacked.push_back(static_cast<uint8_t>(buffer));
        buffer >>= 8;
        filled -= 8;
    }
    if (filled > 0)
        repacked.push_back(static_cast<uint8_t>(buffer));
    return repacked;
}

} // namespace rtsp
