#pragma once

#include "platform/rtsp/h265_bitstream.h"
#include "platform/rtsp/kept_format.h"
#include "platform/rtsp/nal_facts.h"

#include <map>
#include <string_view>

namespace rtsp {

/// Parameter sets and pictures of an H.265 stream.
class H265Codec : public NalCodec
{
public:
    /// Adds the sets of one of the description's sprop-vps, sprop-sps and sprop-pps.
    void addSets(std::string_view sprop);

    NalFacts inspect(std::span<const uint8_t> nal) override;
    bool mayBeReferred(std::span<const uint8_t> nal) const override;
    std::shared_ptr<const base::VideoFormat> format() override;

private:
    struct Sps
    {
        base::Bytes nal;
        H265Sps read;
    };
    struct Pps
    {
        base::Bytes nal;
        H265Pps read;
    };

    bool keepSet(std::span<const uint8_t> nal);
    bool replace(base::Bytes &kept, std::span<const uint8_t> nal);
    NalFacts inspectSlice(std::span<const uint8_t> nal);
    const Pps *activePps() const;
    const Sps *activeSps() const;
    base::Bytes configuration(const Sps &active) const;

    std::map<unsigned, base::Bytes> m_vps;
    std::map<unsigned, Sps> m_sps;
    std::map<unsigned, Pps> m_pps;
    unsigned m_activePps = 0;
    KeptFormat m_format;
};

} // namespace rtsp
