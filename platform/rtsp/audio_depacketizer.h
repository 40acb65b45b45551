#pragma once

#include "platform/rtsp/depacketizer.h"
#include "platform/rtsp/payload_kinds.h"

namespace rtsp {

/// Sound whose payload is handed on as it is: G.711, G.726, L16 (RFC 3551 4.5), Opus (RFC 7587).
class AudioDepacketizer : public Depacketizer
{
public:
    /// @param kind one of those
    AudioDepacketizer(Client &client, PayloadKind kind, const PayloadFormat &format);

    void take(const MediaPacket &packet) override;
    void restart() override {}
    [[nodiscard]] std::shared_ptr<const base::AudioFormat> soundFormat() const override
    {
        return m_format;
    }

private:
    Client &m_client;
    const bool m_isBigEndian;     ///< G.726 in the packing of ATM (ITU-T I.366.2)
    std::size_t m_sampleSize = 1; ///< bytes of what cannot be cut
    std::shared_ptr<const base::AudioFormat> m_format;
};

/// Turns the packing of G.726 with the first sample in the high bits into that with the first
/// sample in the low bits.
/// @param bits of a sample, 2 to 5
[[nodiscard]] base::Bytes repackG726(std::span<const uint8_t> bytes, unsigned bits);

} // namespace rtsp
