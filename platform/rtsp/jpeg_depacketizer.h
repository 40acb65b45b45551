#pragma once

#include "platform/rtsp/depacketizer.h"

#include <array>

namespace rtsp {

/// JPEG (RFC 2435): makes whole JFIF files. Frames with a hole are left out, which harms no other.
class JpegDepacketizer : public Depacketizer
{
public:
    /// The size, pixels, of frames that are too large to tell theirs; 0 when it is not known.
    JpegDepacketizer(Client &client, int width, int height);

    void take(const MediaPacket &packet) override;
    void restart() override;

private:
    /// The header before the scan data of each packet.
    struct Header
    {
        std::size_t offset = 0; ///< of the scan data in the frame
        unsigned type = 0;
        unsigned quality = 0;
        int width = 0;
        int height = 0;
        unsigned restartInterval = 0;
        std::span<const uint8_t> tables; ///< of quantization, in the first packet of a frame
        unsigned precision = 0;          ///< bit n: table n has values of 16 bits
    };
    struct Tables
    {
        base::Bytes bytes; ///< one after the other
        unsigned precision = 0;
    };

    std::optional<Header> readHeader(std::span<const uint8_t> &rest) const;
    bool begin(const Header &header, std::span<const uint8_t> scan);
    bool chooseTables(const Header &header);
    void appendHeaders(const Header &header);
    void appendTables();
    void finish();

    Client &m_client;
    const int m_largeWidth;
    const int m_largeHeight;
    base::Bytes m_frame;
    std::size_t m_scanSize = 0; ///< of m_frame, behind the headers
    bool m_inFrame = false;
    bool m_damaged = false; ///< the frame at hand; the rest of its packets is skipped
    bool m_hasTime = false;
    uint32_t m_time = 0;
    TimePoint m_began;
    TimePoint m_arrived;
    std::size_t m_lastSize = 0;
    int m_width = 0;
    int m_height = 0;
    Tables m_tables;                ///< of the frame at hand
    std::array<Tables, 128> m_told; ///< in band, by quality 128 to 254, which may not tell again
    std::shared_ptr<const base::VideoFormat> m_format;
};

} // namespace rtsp
