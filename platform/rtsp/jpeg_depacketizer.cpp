#include "platform/rtsp/jpeg_depacketizer.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/jpeg_tables.h"

#include <algorithm>
#include <utility>

namespace rtsp {

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t tableHeaderSize = 4;
constexpr unsigned lastPlainType = 63; ///< from here up with restart intervals
constexpr unsigned firstToldQuality = 128;
constexpr unsigned eachFrameQuality = 255; ///< tables are told with each frame
constexpr std::size_t tableValues = 64;
constexpr uint8_t markerByte = 0xff;
constexpr uint8_t startOfImage = 0xd8;
constexpr uint8_t endOfImage = 0xd9;

bool endsAsImage(const base::Bytes &frame)
{
    return frame.size() >= 2 && frame[frame.size() - 2] == markerByte && frame.back() == endOfImage;
}

} // namespace

JpegDepacketizer::JpegDepacketizer(Client &client, int width, int height)
    : m_client(client)
    , m_largeWidth(width)
    , m_largeHeight(height)
{
}

void JpegDepacketizer::take(const MediaPacket &packet)
{
    std::span<const uint8_t> rest = packet.payload;
    const std::optional<Header> header = readHeader(rest);
    const bool nextTime = m_hasTime && packet.time != m_time;
    if (m_inFrame && (nextTime || (header && header->offset == 0 && m_scanSize > 0))) {
        // Without its marker the frame is whole as far as nothing was lost behind it.
        m_damaged |= packet.afterGap;
        finish();
    }
    m_hasTime = true;
    m_time = packet.time;
    m_arrived = packet.arrived;
    if (!header)
        return;
    if (!m_inFrame) {
        m_inFrame = true;
        m_began = packet.arrived;
        m_damaged = !begin(*header, rest);
    }
    if (packet.afterGap && header->offset != 0)
        m_damaged = true;
    if (header->offset != m_scanSize || m_frame.size() + rest.size() > maxFrameSize)
        m_damaged = true;
    if (!m_damaged) {
        append(m_frame, rest);
        m_scanSize += rest.size();
    }
    if (packet.marker)
        finish();
}

std::optional<JpegDepacketizer::Header>
JpegDepacketizer::readHeader(std::span<const uint8_t> &rest) const
{
    if (rest.size() < headerSize)
        return std::nullopt;
    Header header;
    header.offset = read24(rest, 1);
    header.type = rest[4];
    header.quality = rest[5];
    header.width = rest[6] * 8;
    header.height = rest[7] * 8;
    rest = rest.subspan(headerSize);
    if (header.type > lastPlainType) {
        if (rest.size() < 4)
            return std::nullopt;
        header.restartInterval = read16(rest, 0);
        rest = rest.subspan(4);
    }
    if (header.offset == 0 && header.quality >= firstToldQuality) {
        if (rest.size() < tableHeaderSize)
            return std::nullopt;
        header.precision = rest[1];
        const std::size_t size = read16(rest, 2);
        rest = rest.subspan(tableHeaderSize);
        if (size > rest.size())
            return std::nullopt;
        header.tables = rest.first(size);
        rest = rest.subspan(size);
    }
    return header;
}

/// Writes the headers of a frame; false when it cannot be decoded.
bool JpegDepacketizer::begin(const Header &header, std::span<const uint8_t> scan)
{
    m_frame.clear();
    m_frame.reserve(m_lastSize + m_lastSize / 4);
    m_scanSize = 0;
    if (header.offset != 0)
        return false;
    // The size has 8 bits in units of 8 pixels: 2040 at most.
    const bool isLarge = header.width == 0 || header.height == 0;
    m_width = isLarge ? m_largeWidth : header.width;
    m_height = isLarge ? m_largeHeight : header.height;
    if (m_largeWidth > m_width && m_largeWidth % 2048 == header.width)
        m_width = m_largeWidth; // the size of 11 bits has wrapped
    if (m_largeHeight > m_height && m_largeHeight % 2048 == header.height)
        m_height = m_largeHeight;
    if (scan.size() > 2 && scan[0] == markerByte && scan[1] == startOfImage)
        return true; // a camera that sends its files as they are
    if (m_width <= 0 || m_height <= 0 || header.type % 64 > 1 || !chooseTables(header))
        return false;
    appendHeaders(header);
    return true;
}

bool JpegDepacketizer::chooseTables(const Header &header)
{
    if (header.quality == 0)
        return false;
    if (header.quality < firstToldQuality) {
        const std::array<uint8_t, 2 *tableValues> tables = jpegTablesOf(header.quality);
        m_tables = {base::Bytes(tables.begin(), tables.end()), 0};
        return true;
    }
    if (!header.tables.empty()) {
        m_tables = {base::Bytes(header.tables.begin(), header.tables.end()), header.precision};
        if (header.quality != eachFrameQuality)
            m_told[header.quality - firstToldQuality] = m_tables;
    } else if (header.quality != eachFrameQuality) {
        m_tables = m_told[header.quality - firstToldQuality];
    } else {
        return false;
    }
    return m_tables.bytes.size() >= tableValues && m_tables.bytes.size() <= 4 * tableValues;
}

void JpegDepacketizer::appendTables()
{
    std::span<const uint8_t> rest = m_tables.bytes;
    // Type 0 and 1 have two tables; some tell only one for all components.
    for (unsigned id = 0; id < 2; ++id) {
        const bool isWide = (m_tables.precision >> id & 1) != 0;
        const std::size_t size = isWide ? 2 * tableValues : tableValues;
        if (rest.size() < size)
            return;
        append(m_frame, 0xffdb, 2);
        append(m_frame, 2 + 1 + size, 2);
        m_frame.push_back(static_cast<uint8_t>((isWide ? 0x10 : 0) | id));
        append(m_frame, rest.first(size));
        rest = rest.subspan(size);
    }
}

// RFC 2435 appendix B
void JpegDepacketizer::appendHeaders(const Header &header)
{
    append(m_frame, 0xffd8, 2);
    // APP0: JFIF 1.1, square pixels, no thumbnail
    constexpr std::array<uint8_t, 18> jfif = {0xff, 0xe0, 0, 16, 'J', 'F', 'I', 'F', 0,
                                              1,    1,    0, 0,  1,   0,   1,   0,   0};
    append(m_frame, jfif);
    appendTables();
    if (header.restartInterval > 0) {
        append(m_frame, 0xffdd0004, 4);
        append(m_frame, header.restartInterval, 2);
    }
    // SOF0: three components of 8 bits; type 0 has the chroma of 4:2:2, type 1 of 4:2:0.
    const uint8_t chromaTable = m_tables.bytes.size() >= 2 * tableValues ? 1 : 0;
    append(m_frame, 0xffc00011, 4);
    m_frame.push_back(8);
    append(m_frame, static_cast<uint64_t>(m_height), 2);
    append(m_frame, static_cast<uint64_t>(m_width), 2);
    const uint8_t lumaSampling = header.type % 64 == 0 ? 0x21 : 0x22;
    const std::array<uint8_t, 10> components = {3,           1, lumaSampling, 0,          2, 0x11,
                                                chromaTable, 3, 0x11,         chromaTable};
    append(m_frame, components);
    append(m_frame, jpegHuffmanSegments());
    // SOS: all components, in one scan
    constexpr std::array<uint8_t, 14> scan = {0xff, 0xda, 0, 12,   3, 1,  0,
                                              2,    0x11, 3, 0x11, 0, 63, 0};
    append(m_frame, scan);
}

void JpegDepacketizer::finish()
{
    if (!std::exchange(m_inFrame, false))
        return;
    m_lastSize = m_frame.size();
    base::Bytes frame = std::exchange(m_frame, base::Bytes());
    const bool damaged = std::exchange(m_damaged, false) || m_scanSize == 0;
    m_scanSize = 0;
    if (damaged) {
        m_client.onDamaged();
        return;
    }
    if (!endsAsImage(frame))
        append(frame, 0xff00 | endOfImage, 2);
    if (!m_format || m_format->width != m_width || m_format->height != m_height) {
        auto format = std::make_shared<base::VideoFormat>();
        format->codec = base::VideoCodec::Jpeg;
        format->width = m_width;
        format->height = m_height;
        m_format = std::move(format);
    }
    VideoFrame made;
    made.payload = std::move(frame);
    made.format = m_format;
    made.key = true;
    made.time = m_time;
    made.began = m_began;
    made.completed = m_arrived;
    m_client.onFrame(std::move(made));
}

void JpegDepacketizer::restart()
{
    m_inFrame = false;
    m_damaged = false;
    m_scanSize = 0;
    m_frame.clear();
    m_hasTime = false;
}

} // namespace rtsp
