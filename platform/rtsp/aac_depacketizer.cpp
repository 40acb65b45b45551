#include "platform/rtsp/aac_depacketizer.h"

#include "platform/base/text.h"
#include "platform/rtsp/aac_config.h"
#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/session_description.h"

#include <algorithm>
#include <utility>

namespace rtsp {

namespace {

constexpr std::size_t maxAacFrameSize = 64 * 1024;
constexpr std::size_t maxFramesInPacket = 64;
constexpr int maxFieldBits = 32;
constexpr std::size_t adtsHeaderSize = 7;
constexpr std::size_t adtsChecksumSize = 2;

} // namespace

std::unique_ptr<Depacketizer> AacDepacketizer::create(Client &client, const PayloadFormat &format)
{
    const std::optional<Header> header = readFormat(format);
    if (!header)
        return nullptr;
    const std::string *config = format.parameter("config");
    auto audio = makeAacFormat(decodeHex(config ? *config : std::string()), format.clockRate,
                               format.channels);
    if (!audio)
        return nullptr;
    return std::unique_ptr<Depacketizer>(new AacDepacketizer(client, *header, std::move(audio)));
}

AacDepacketizer::AacDepacketizer(Client &client, const Header &header,
                                 std::shared_ptr<const base::AudioFormat> audio)
    : m_client(client)
    , m_header(header)
    , m_format(std::move(audio))
{
    const std::optional<AacConfig> config = parseAacConfig(m_format->configuration);
    const int64_t samples = config ? config->frameSamples : 1024;
    // Of the rate of the core; the clock of RTP may be that of its extension.
    m_frameDuration = samples * 1'000'000'000 / std::max(m_format->rate, 1);
}

std::optional<AacDepacketizer::Header> AacDepacketizer::readFormat(const PayloadFormat &format)
{
    // Frames of one packet that do not follow each other (RFC 3640 3.2.3.2): no camera does that.
    if (format.number("maxdisplacement").value_or(0) > 0)
        return std::nullopt;
    Header header;
    if (const std::string *mode = format.parameter("mode")) {
        const std::string name = base::lowerAscii(*mode);
        if (name == "aac-lbr") {
            header.size = 6;
            header.index = header.indexDelta = 2;
        } else if (name != "aac-hbr" && name != "generic" && !name.empty()) {
            return std::nullopt; // CELP
        }
    }
    const auto read = [&](const char *name, int &bits) {
        if (const std::optional<int> told = format.number(name))
            bits = *told;
        return bits >= 0 && bits <= maxFieldBits;
    };
    if (!read("sizelength", header.size) || !read("indexlength", header.index) ||
        !read("indexdeltalength", header.indexDelta) || !read("ctsdeltalength", header.ctsDelta) ||
        !read("dtsdeltalength", header.dtsDelta) ||
        !read("streamstateindication", header.streamState) ||
        !read("auxiliarydatasizelength", header.auxiliarySize))
        return std::nullopt;
    header.randomAccess = format.number("randomaccessindication").value_or(0) == 1;
    header.constantSize = static_cast<unsigned>(format.number("constantsize").value_or(0));
    if (header.constantSize > 0 && !format.parameter("sizelength"))
        header.size = 0;
    return header;
}

bool AacDepacketizer::hasHeaders() const
{
    return m_header.size + m_header.index + m_header.indexDelta + m_header.ctsDelta +
                   m_header.dtsDelta + m_header.streamState >
               0 ||
           m_header.randomAccess;
}

/// Reads the headers off the front of a payload into m_sizes; false when they are wrong.
bool AacDepacketizer::readSizes(std::span<const uint8_t> &rest)
{
    m_sizes.clear();
    if (!hasHeaders()) {
        const std::size_t each = m_header.constantSize > 0 ? m_header.constantSize : rest.size();
        for (std::size_t at = 0; at < rest.size() && m_sizes.size() < maxFramesInPacket; at += each)
            m_sizes.push_back(each);
        return true;
    }
    if (rest.size() < 2)
        return false;
    const std::size_t bits = read16(rest, 0);
    const std::size_t bytes = (bits + 7) / 8;
    if (bytes > rest.size() - 2)
        return false;
    BitReader reader(rest.subspan(2, bytes));
    while (reader.good() && reader.position() < bits && m_sizes.size() < maxFramesInPacket) {
        const std::size_t size =
            m_header.size > 0 ? reader.bits(m_header.size) : m_header.constantSize;
        reader.skip(m_sizes.empty() ? m_header.index : m_header.indexDelta);
        if (m_header.ctsDelta > 0 && reader.flag())
            reader.skip(m_header.ctsDelta);
        if (m_header.dtsDelta > 0 && reader.flag())
            reader.skip(m_header.dtsDelta);
        reader.skip((m_header.randomAccess ? 1 : 0) + m_header.streamState);
        if (reader.good())
            m_sizes.push_back(size);
    }
    rest = rest.subspan(2 + bytes);
    if (m_header.auxiliarySize > 0) {
        BitReader auxiliary(rest);
        const std::size_t size = auxiliary.bits(m_header.auxiliarySize);
        const std::size_t skipped =
            (static_cast<std::size_t>(m_header.auxiliarySize) + size + 7) / 8;
        rest = restFrom(rest, skipped);
    }
    return !m_sizes.empty();
}

void AacDepacketizer::take(const MediaPacket &packet)
{
    if (packet.afterGap || (!m_fragments.empty() && packet.time != m_time)) {
        if (packet.afterGap || !m_fragments.empty())
            m_client.onDamaged();
        m_skips = !m_fragments.empty() && packet.time == m_time;
        m_fragments.clear();
    }
    if (packet.time != m_time)
        m_skips = false;
    m_time = packet.time;
    m_arrived = packet.arrived;
    std::span<const uint8_t> rest = packet.payload;
    if (!readSizes(rest))
        return;
    if (m_sizes.size() == 1 && m_sizes[0] > rest.size()) {
        takeFragment(rest, m_sizes[0], packet);
        return;
    }
    m_skips = false;
    if (!m_fragments.empty()) {
        takeFragment(rest, m_whole, packet); // the last part may tell its own size
        return;
    }
    int64_t later = 0;
    for (const std::size_t size : m_sizes) {
        if (size > rest.size())
            break;
        emit(rest.first(size), later);
        rest = rest.subspan(size);
        later += m_frameDuration;
    }
}

// All parts of a frame tell the size of the whole (RFC 3640 3.2.3).
void AacDepacketizer::takeFragment(std::span<const uint8_t> bytes, std::size_t whole,
                                   const MediaPacket &packet)
{
    if (m_skips || whole > maxAacFrameSize) {
        m_skips = !packet.marker;
        return;
    }
    m_whole = whole;
    append(m_fragments, bytes);
    if (m_fragments.size() < whole)
        return;
    const base::Bytes frame = std::exchange(m_fragments, base::Bytes());
    emit(std::span(frame).first(whole), 0);
}

void AacDepacketizer::emit(std::span<const uint8_t> frame, int64_t later)
{
    frame = withoutAdtsHeader(frame);
    if (frame.empty())
        return;
    AudioPiece piece;
    piece.payload.assign(frame.begin(), frame.end());
    piece.format = m_format;
    piece.time = m_time;
    piece.later = later;
    piece.arrived = m_arrived;
    m_client.onPiece(std::move(piece));
}

void AacDepacketizer::restart()
{
    m_fragments.clear();
    m_skips = false;
}

std::span<const uint8_t> withoutAdtsHeader(std::span<const uint8_t> frame)
{
    if (frame.size() <= adtsHeaderSize || frame[0] != 0xff || (frame[1] & 0xf6) != 0xf0)
        return frame;
    const std::size_t size = (frame[3] & 3u) << 11 | frame[4] << 3 | frame[5] >> 5;
    if (size != frame.size())
        return frame;
    const bool hasChecksum = (frame[1] & 1) == 0;
    return restFrom(frame, adtsHeaderSize + (hasChecksum ? adtsChecksumSize : 0));
}

} // namespace rtsp
