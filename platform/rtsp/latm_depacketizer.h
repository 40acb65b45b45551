#pragma once

#include "platform/rtsp/aac_config.h"
#include "platform/rtsp/depacketizer.h"

namespace rtsp {

/// AAC in MP4A-LATM (RFC 6416 6): AudioMuxElements, with their StreamMuxConfig in the description
/// or before the frames. One that has a hole is left out.
class LatmDepacketizer : public Depacketizer
{
public:
    /// Null when neither the description nor the frames tell the configuration.
    static std::unique_ptr<Depacketizer> create(Client &client, const PayloadFormat &format);

    void take(const MediaPacket &packet) override;
    void restart() override;
    [[nodiscard]] std::shared_ptr<const base::AudioFormat> soundFormat() const override
    {
        return m_format;
    }

private:
    LatmDepacketizer(Client &client, bool inBand, std::optional<LatmConfig> config);
    void unpack();
    bool readConfig(BitReader &reader);
    void setConfig(LatmConfig config);
    void emit(std::size_t firstBit, std::size_t bits, unsigned index);

    Client &m_client;
    const bool m_inBand; ///< the configuration comes with the frames
    std::optional<LatmConfig> m_config;
    std::shared_ptr<const base::AudioFormat> m_format;
    base::Bytes m_element; ///< as far as it has come
    bool m_damaged = false;
    uint32_t m_time = 0;
    TimePoint m_arrived;
};

} // namespace rtsp
