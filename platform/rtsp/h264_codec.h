#pragma once

#include "platform/rtsp/h264_bitstream.h"
#include "platform/rtsp/kept_format.h"
#include "platform/rtsp/nal_facts.h"

#include <map>
#include <string_view>

namespace rtsp {

/// Parameter sets and pictures of an H.264 stream.
class H264Codec : public NalCodec
{
public:
    /// @param spropSets the sprop-parameter-sets of the description; may be empty
    explicit H264Codec(std::string_view spropSets);

    NalFacts inspect(std::span<const uint8_t> nal) override;
    bool mayBeReferred(std::span<const uint8_t> nal) const override;
    std::shared_ptr<const base::VideoFormat> format() override;

private:
    struct Sps
    {
        base::Bytes nal;
        H264Sps read;
    };
    struct Pps
    {
        base::Bytes nal;
        H264Pps read;
    };

    bool keepSps(std::span<const uint8_t> nal);
    bool keepPps(std::span<const uint8_t> nal);
    NalFacts inspectSlice(std::span<const uint8_t> nal);
    bool isSecondField(std::span<const uint8_t> nal, bool firstMacroblock, const H264Sps &sps);
    const Sps *activeSps() const;
    base::Bytes configuration(const Sps &active) const;

    std::map<unsigned, Sps> m_sps;
    std::map<unsigned, Pps> m_pps;
    unsigned m_activePps = 0;
    bool m_idrSeen = false;
    H264FieldHeader m_field; ///< the first of a frame whose second is awaited, if it is one
    KeptFormat m_format;
};

} // namespace rtsp
