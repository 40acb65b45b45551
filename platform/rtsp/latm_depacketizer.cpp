#include "platform/rtsp/latm_depacketizer.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/session_description.h"

#include <utility>

namespace rtsp {

namespace {

constexpr std::size_t maxElementSize = 256 * 1024;
constexpr uint32_t lastLengthByte = 255; ///< this one is followed by another

} // namespace

std::unique_ptr<Depacketizer> LatmDepacketizer::create(Client &client, const PayloadFormat &format)
{
    const std::string *text = format.parameter("config");
    const base::Bytes bytes = decodeHex(text ? *text : std::string());
    // Cameras that tell it in the description leave cpresent out, which would mean in band.
    const bool inBand = format.number("cpresent").value_or(bytes.empty() ? 1 : 0) != 0;
    BitReader reader(bytes);
    std::optional<LatmConfig> config = readLatmConfig(reader, bytes);
    if (!config && !inBand) {
        const std::optional<base::Bytes> made = makeAacConfig(format.clockRate, format.channels);
        if (!made)
            return nullptr;
        config = LatmConfig();
        config->aac = parseAacConfig(*made).value_or(AacConfig());
        config->configuration = *made;
    }
    return std::unique_ptr<Depacketizer>(new LatmDepacketizer(client, inBand, std::move(config)));
}

LatmDepacketizer::LatmDepacketizer(Client &client, bool inBand, std::optional<LatmConfig> config)
    : m_client(client)
    , m_inBand(inBand)
{
    if (config)
        setConfig(std::move(*config));
}

void LatmDepacketizer::setConfig(LatmConfig config)
{
    if (!m_format || m_format->configuration != config.configuration) {
        auto format = std::make_shared<base::AudioFormat>();
        format->codec = base::AudioCodec::Aac;
        format->rate = config.aac.rate;
        format->channels = config.aac.channels;
        format->configuration = config.configuration;
        m_format = std::move(format);
    }
    m_config = std::move(config);
}

void LatmDepacketizer::take(const MediaPacket &packet)
{
    if (packet.afterGap) {
        // What is missing may have been the start of what comes, up to the next marker or time.
        m_client.onDamaged();
        m_damaged = !m_element.empty() && packet.time == m_time;
        m_element.clear();
    }
    if (packet.time != m_time) {
        if (!m_element.empty())
            unpack(); // its marker never came
        m_damaged = false;
    }
    m_time = packet.time;
    m_arrived = packet.arrived;
    if (m_element.size() + packet.payload.size() > maxElementSize)
        m_damaged = true;
    if (!m_damaged)
        append(m_element, packet.payload);
    if (packet.marker) {
        unpack();
        m_damaged = false;
    }
}

bool LatmDepacketizer::readConfig(BitReader &reader)
{
    if (m_inBand && !reader.flag()) { // useSameStreamMux
        std::optional<LatmConfig> config = readLatmConfig(reader, m_element);
        if (!config)
            return false;
        setConfig(std::move(*config));
    }
    return m_config.has_value();
}

// AudioMuxElement (ISO/IEC 14496-3 1.7.3.1)
void LatmDepacketizer::unpack()
{
    if (!m_damaged && !m_element.empty()) {
        BitReader reader(m_element);
        const unsigned frames = readConfig(reader) ? m_config->subFrames : 0;
        for (unsigned i = 0; i < frames && reader.good() && reader.left() >= 8; ++i) {
            std::size_t bits = m_config->fixedFrameSize;
            if (m_config->frameLengthType == 0) {
                uint32_t byte = lastLengthByte;
                while (byte == lastLengthByte && reader.good()) {
                    byte = reader.bits(8);
                    bits += std::size_t{8} * byte;
                }
            }
            if (!reader.good() || bits > reader.left())
                break;
            emit(reader.position(), bits, i);
            reader.skip(static_cast<int>(bits));
        }
    }
    m_element.clear();
}

void LatmDepacketizer::emit(std::size_t firstBit, std::size_t bits, unsigned index)
{
    if (bits == 0)
        return;
    AudioPiece piece;
    piece.payload = copyBits(m_element, firstBit, bits);
    piece.format = m_format;
    piece.time = m_time;
    piece.later = int64_t{m_config->aac.frameSamples} * 1'000'000'000 / m_format->rate * index;
    piece.arrived = m_arrived;
    m_client.onPiece(std::move(piece));
}

void LatmDepacketizer::restart()
{
    m_element.clear();
    m_damaged = false;
}

} // namespace rtsp
