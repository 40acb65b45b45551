#include "platform/rtsp/h265_bitstream.h"

#include "platform/rtsp/bit_reader.h"

#include <algorithm>

namespace rtsp {

namespace {

constexpr unsigned maxVpsId = 15;
constexpr unsigned maxSpsId = 15;
constexpr unsigned maxPpsId = 63;
constexpr int64_t maxDimension = 16384; ///< pixels
constexpr int maxSubLayers = 7;
constexpr uint32_t maxExtraDepth = 8; ///< bits of a sample beyond 8

BitReader readerOf(std::span<const uint8_t> nal)
{
    return BitReader(nal.subspan(std::min(h265HeaderSize, nal.size())), BitReader::Escapes::Nal);
}

bool isOfType(std::span<const uint8_t> nal, H265Nal type)
{
    return nal.size() > h265HeaderSize && h265TypeOf(nal) == type;
}

// profile_tier_level (7.3.3)
void readProfileTierLevel(BitReader &reader, H265Sps &sps)
{
    for (uint8_t &byte : sps.profileTierLevel)
        byte = static_cast<uint8_t>(reader.bits(8));
    const unsigned subLayers = sps.maxSubLayers - 1;
    std::array<bool, maxSubLayers> hasProfile{};
    std::array<bool, maxSubLayers> hasLevel{};
    for (unsigned i = 0; i < subLayers; ++i) {
        hasProfile[i] = reader.flag();
        hasLevel[i] = reader.flag();
    }
    if (subLayers > 0)
        reader.skip(2 * static_cast<int>(8 - subLayers));
    for (unsigned i = 0; i < subLayers; ++i) {
        if (hasProfile[i])
            reader.skip(88);
        if (hasLevel[i])
            reader.skip(8);
    }
}

bool readSize(BitReader &reader, H265Sps &sps)
{
    sps.chromaFormat = reader.ue();
    const bool separatePlanes = sps.chromaFormat == 3 && reader.flag();
    int64_t width = reader.ue();
    int64_t height = reader.ue();
    const int64_t unitX =
        !separatePlanes && (sps.chromaFormat == 1 || sps.chromaFormat == 2) ? 2 : 1;
    const int64_t unitY = !separatePlanes && sps.chromaFormat == 1 ? 2 : 1;
    if (reader.flag()) {
        const int64_t left = reader.ue();
        const int64_t right = reader.ue();
        const int64_t top = reader.ue();
        const int64_t bottom = reader.ue();
        width -= unitX * (left + right);
        height -= unitY * (top + bottom);
    }
    if (sps.chromaFormat > 3 || width < 1 || width > maxDimension || height < 1 ||
        height > maxDimension)
        return false;
    sps.width = static_cast<int>(width);
    sps.height = static_cast<int>(height);
    return true;
}

} // namespace

std::optional<H265Sps> parseH265Sps(std::span<const uint8_t> nal)
{
    if (!isOfType(nal, H265Nal::Sps))
        return std::nullopt;
    BitReader reader = readerOf(nal);
    H265Sps sps;
    sps.vpsId = reader.bits(4);
    sps.maxSubLayers = reader.bits(3) + 1;
    sps.temporalIdNesting = reader.flag();
    if (sps.maxSubLayers > maxSubLayers)
        return std::nullopt;
    readProfileTierLevel(reader, sps);
    sps.id = reader.ue();
    if (sps.id > maxSpsId || !readSize(reader, sps))
        return std::nullopt;
    const uint32_t extraLuma = reader.ue();
    const uint32_t extraChroma = reader.ue();
    if (extraLuma > maxExtraDepth || extraChroma > maxExtraDepth)
        return std::nullopt;
    sps.lumaDepth = 8 + extraLuma;
    sps.chromaDepth = 8 + extraChroma;
    reader.ue(); // log2_max_pic_order_cnt_lsb_minus4
    const bool forEachSubLayer = reader.flag();
    for (unsigned i = forEachSubLayer ? 0 : sps.maxSubLayers - 1; i < sps.maxSubLayers; ++i) {
        reader.ue(); // sps_max_dec_pic_buffering_minus1
        sps.maxReordered = reader.ue();
        reader.ue(); // sps_max_latency_increase_plus1
    }
    if (!reader.good())
        return std::nullopt;
    return sps;
}

std::optional<unsigned> parseH265VpsId(std::span<const uint8_t> nal)
{
    if (!isOfType(nal, H265Nal::Vps))
        return std::nullopt;
    const unsigned id = readerOf(nal).bits(4);
    return id <= maxVpsId ? std::optional(id) : std::nullopt;
}

std::optional<H265Pps> parseH265Pps(std::span<const uint8_t> nal)
{
    if (!isOfType(nal, H265Nal::Pps))
        return std::nullopt;
    BitReader reader = readerOf(nal);
    H265Pps pps;
    pps.id = reader.ue();
    pps.spsId = reader.ue();
    reader.skip(2); // dependent_slice_segments_enabled_flag, output_flag_present_flag
    pps.extraSliceHeaderBits = reader.bits(3);
    if (!reader.good() || pps.id > maxPpsId || pps.spsId > maxSpsId)
        return std::nullopt;
    return pps;
}

namespace {

std::optional<unsigned> readPpsId(BitReader &reader, H265Nal type)
{
    reader.skip(1); // first_slice_segment_in_pic_flag
    if (type >= H265Nal::FirstIrap && type <= H265Nal::LastIrapReserved)
        reader.skip(1); // no_output_of_prior_pics_flag
    const unsigned id = reader.ue();
    return reader.good() && id <= maxPpsId ? std::optional(id) : std::nullopt;
}

} // namespace

std::optional<unsigned> parseH265SlicePpsId(std::span<const uint8_t> nal)
{
    if (nal.size() <= h265HeaderSize || h265TypeOf(nal) > H265Nal::LastSlice)
        return std::nullopt;
    BitReader reader = readerOf(nal);
    return readPpsId(reader, h265TypeOf(nal));
}

std::optional<H265SliceType> parseH265SliceType(std::span<const uint8_t> nal, const H265Pps &pps)
{
    if (nal.size() <= h265HeaderSize || h265TypeOf(nal) > H265Nal::LastSlice ||
        !isFirstH265Segment(nal))
        return std::nullopt;
    BitReader reader = readerOf(nal);
    if (!readPpsId(reader, h265TypeOf(nal)))
        return std::nullopt;
    reader.skip(static_cast<int>(pps.extraSliceHeaderBits));
    const unsigned type = reader.ue();
    if (!reader.good() || type > 2)
        return std::nullopt;
    return static_cast<H265SliceType>(type);
}

} // namespace rtsp
