#pragma once

#include "platform/rtsp/depacketizer.h"

#include <vector>

namespace rtsp {

/**
 * AAC in MPEG4-GENERIC (RFC 3640): several frames in a packet, or a part of one. Without the sizes
 * of the header's fields those of AAC-hbr are assumed, without a configuration that of AAC-LC with
 * the rate and channels of rtpmap. Interleaved frames are handed on as they were sent.
 */
class AacDepacketizer : public Depacketizer
{
public:
    /// Null when the format is of another mode or its rate has no configuration.
    static std::unique_ptr<Depacketizer> create(Client &client, const PayloadFormat &format);

    void take(const MediaPacket &packet) override;
    void restart() override;
    [[nodiscard]] std::shared_ptr<const base::AudioFormat> soundFormat() const override
    {
        return m_format;
    }

private:
    /// The fields of the header of an access unit, in bits (RFC 3640 3.2.1.1).
    struct Header
    {
        int size = 13;
        int index = 3;
        int indexDelta = 3;
        int ctsDelta = 0;
        int dtsDelta = 0;
        bool randomAccess = false;
        int streamState = 0;
        int auxiliarySize = 0;
        unsigned constantSize = 0; ///< bytes; 0: told in the header
    };

    AacDepacketizer(Client &client, const Header &header,
                    std::shared_ptr<const base::AudioFormat> audio);
    static std::optional<Header> readFormat(const PayloadFormat &format);
    bool hasHeaders() const;
    bool readSizes(std::span<const uint8_t> &rest);
    void takeFragment(std::span<const uint8_t> bytes, std::size_t whole, const MediaPacket &packet);
    void emit(std::span<const uint8_t> frame, int64_t later);

    Client &m_client;
    const Header m_header;
    const std::shared_ptr<const base::AudioFormat> m_format;
    int64_t m_frameDuration = 0;      ///< ns
    std::vector<std::size_t> m_sizes; ///< of the frames in the packet at hand, bytes
    base::Bytes m_fragments;
    std::size_t m_whole = 0; ///< size of the frame of which m_fragments is the beginning
    bool m_skips = false;    ///< the rest of a frame with a hole
    uint32_t m_time = 0;
    TimePoint m_arrived;
};

/// The raw_data_blocks of a frame that a camera sends with an ADTS header (ISO/IEC
/// 14496-3 1.A.2.2); other frames as they are.
[[nodiscard]] std::span<const uint8_t> withoutAdtsHeader(std::span<const uint8_t> frame);

} // namespace rtsp
