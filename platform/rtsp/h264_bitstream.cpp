#include "platform/rtsp/h264_bitstream.h"

#include "platform/rtsp/bit_reader.h"

#include <algorithm>
#include <array>

namespace rtsp {

namespace {

constexpr unsigned maxSpsId = 31;
constexpr unsigned maxPpsId = 255;
constexpr int64_t maxDimension = 16384; ///< pixels
constexpr uint32_t maxOrderCycle = 255;
constexpr uint32_t maxExtraDepth = 6; ///< bits of a sample beyond 8
constexpr uint32_t maxExtraBits = 12; ///< of a frame number beyond 4
constexpr uint32_t recoveryPoint = 6; ///< type of an SEI message
constexpr unsigned sliceTypes = 5;

BitReader readerOf(std::span<const uint8_t> nal)
{
    return BitReader(nal.subspan(std::min<std::size_t>(1, nal.size())), BitReader::Escapes::Nal);
}

bool isSlice(H264Nal type)
{
    return type == H264Nal::Slice || type == H264Nal::PartitionA || type == H264Nal::IdrSlice;
}

void skipScalingList(BitReader &reader, int size)
{
    int last = 8;
    int next = 8;
    for (int i = 0; i < size && reader.good(); ++i) {
        if (next != 0)
            next = static_cast<int>((int64_t{last} + reader.se() + 256) & 0xff);
        last = next == 0 ? last : next;
    }
}

bool readSampleFormat(BitReader &reader, H264Sps &sps)
{
    sps.chromaFormat = reader.ue();
    if (sps.chromaFormat == 3)
        sps.separateColourPlanes = reader.flag();
    const uint32_t extraLuma = reader.ue();
    const uint32_t extraChroma = reader.ue();
    if (sps.chromaFormat > 3 || extraLuma > maxExtraDepth || extraChroma > maxExtraDepth)
        return false;
    sps.lumaDepth = 8 + extraLuma;
    sps.chromaDepth = 8 + extraChroma;
    reader.skip(1); // qpprime_y_zero_transform_bypass_flag
    if (!reader.flag())
        return true;
    const int lists = sps.chromaFormat == 3 ? 12 : 8;
    for (int i = 0; i < lists; ++i)
        if (reader.flag())
            skipScalingList(reader, i < 6 ? 16 : 64);
    return true;
}

bool skipOrderCount(BitReader &reader, H264Sps &sps)
{
    sps.orderCountType = reader.ue();
    if (sps.orderCountType == 0) {
        reader.ue(); // log2_max_pic_order_cnt_lsb_minus4
    } else if (sps.orderCountType == 1) {
        reader.skip(1);
        reader.se();
        reader.se();
        const uint32_t cycle = reader.ue();
        if (cycle > maxOrderCycle)
            return false;
        for (uint32_t i = 0; i < cycle; ++i)
            reader.se();
    }
    return true;
}

bool readSize(BitReader &reader, H264Sps &sps)
{
    const int64_t columns = int64_t{reader.ue()} + 1;
    const int64_t rows = int64_t{reader.ue()} + 1;
    sps.framesOnly = reader.flag();
    if (!sps.framesOnly)
        reader.skip(1);            // mb_adaptive_frame_field_flag
    reader.skip(1);                // direct_8x8_inference_flag
    std::array<int64_t, 4> crop{}; // left, right, top, bottom
    if (reader.flag())
        for (int64_t &side : crop)
            side = reader.ue();
    const unsigned chroma = sps.separateColourPlanes ? 0 : sps.chromaFormat;
    const int64_t unitX = chroma == 1 || chroma == 2 ? 2 : 1;
    const int64_t unitY = (chroma == 1 ? 2 : 1) * (sps.framesOnly ? 1 : 2);
    const int64_t width = columns * 16 - unitX * (crop[0] + crop[1]);
    const int64_t height = rows * 16 * (sps.framesOnly ? 1 : 2) - unitY * (crop[2] + crop[3]);
    if (width < 1 || width > maxDimension || height < 1 || height > maxDimension)
        return false;
    sps.width = static_cast<int>(width);
    sps.height = static_cast<int>(height);
    return true;
}

} // namespace

bool H264Sps::tellsSampleFormat() const
{
    constexpr std::array<uint8_t, 12> profiles = {100, 110, 122, 244, 44,  83,
                                                  86,  118, 128, 138, 139, 134};
    return std::find(profiles.begin(), profiles.end(), profile) != profiles.end();
}

std::optional<H264Sps> parseH264Sps(std::span<const uint8_t> nal)
{
    if (nal.empty() || h264TypeOf(nal) != H264Nal::Sps)
        return std::nullopt;
    BitReader reader = readerOf(nal);
    H264Sps sps;
    sps.profile = static_cast<uint8_t>(reader.bits(8));
    sps.constraints = static_cast<uint8_t>(reader.bits(8));
    sps.level = static_cast<uint8_t>(reader.bits(8));
    sps.id = reader.ue();
    if (sps.id > maxSpsId || (sps.tellsSampleFormat() && !readSampleFormat(reader, sps)))
        return std::nullopt;
    const uint32_t extraBits = reader.ue();
    if (extraBits > maxExtraBits || !skipOrderCount(reader, sps))
        return std::nullopt;
    sps.frameNumberBits = 4 + static_cast<int>(extraBits);
    reader.ue();    // max_num_ref_frames
    reader.skip(1); // gaps_in_frame_num_value_allowed_flag
    if (!readSize(reader, sps) || !reader.good())
        return std::nullopt;
    return sps;
}

std::optional<H264Pps> parseH264Pps(std::span<const uint8_t> nal)
{
    if (nal.empty() || h264TypeOf(nal) != H264Nal::Pps)
        return std::nullopt;
    BitReader reader = readerOf(nal);
    H264Pps pps;
    pps.id = reader.ue();
    pps.spsId = reader.ue();
    if (!reader.good() || pps.id > maxPpsId || pps.spsId > maxSpsId)
        return std::nullopt;
    return pps;
}

namespace {

std::optional<H264SliceHeader> readSliceHeader(BitReader &reader)
{
    H264SliceHeader header;
    header.firstMacroblock = reader.ue();
    header.type = reader.ue() % sliceTypes;
    if (!reader.good())
        return std::nullopt;
    // A unit that is cut here still tells what it is.
    header.ppsId = reader.ue();
    return header;
}

} // namespace

std::optional<H264SliceHeader> parseH264Slice(std::span<const uint8_t> nal)
{
    if (nal.empty() || !isSlice(h264TypeOf(nal)))
        return std::nullopt;
    BitReader reader = readerOf(nal);
    return readSliceHeader(reader);
}

std::optional<H264FieldHeader> parseH264Field(std::span<const uint8_t> nal, const H264Sps &sps)
{
    if (nal.empty() || !isSlice(h264TypeOf(nal)))
        return std::nullopt;
    BitReader reader = readerOf(nal);
    if (!readSliceHeader(reader))
        return std::nullopt;
    if (sps.separateColourPlanes)
        reader.skip(2);
    H264FieldHeader header;
    header.frameNumber = reader.bits(sps.frameNumberBits);
    if (!sps.framesOnly) {
        header.isField = reader.flag();
        header.isBottom = header.isField && reader.flag();
    }
    if (!reader.good())
        return std::nullopt;
    return header;
}

std::optional<unsigned> findRecoveryPoint(std::span<const uint8_t> nal)
{
    if (nal.empty() || h264TypeOf(nal) != H264Nal::Sei)
        return std::nullopt;
    BitReader reader = readerOf(nal);
    const auto readSum = [&reader] {
        uint32_t sum = 0;
        uint32_t byte = 0xff;
        while (byte == 0xff && reader.good()) {
            byte = reader.bits(8);
            sum += byte;
        }
        return sum;
    };
    while (reader.good()) {
        const uint32_t type = readSum();
        const uint32_t size = readSum();
        if (!reader.good())
            break;
        if (type == recoveryPoint) {
            const unsigned frames = reader.ue();
            return reader.good() ? std::optional(frames) : std::nullopt;
        }
        reader.skip(static_cast<int>(std::min<uint32_t>(size, 1 << 20) * 8));
    }
    return std::nullopt;
}

SliceFacts readSliceFacts(std::span<const uint8_t> unit, int lengthSize)
{
    SliceFacts facts;
    const auto prefix = static_cast<std::size_t>(lengthSize);
    while (unit.size() > prefix) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < prefix; ++i)
            length = length << 8 | unit[i];
        unit = unit.subspan(prefix);
        if (length == 0 || length > unit.size())
            break;
        const std::span<const uint8_t> nal = unit.first(length);
        if (isSlice(h264TypeOf(nal))) {
            const std::optional<H264SliceHeader> header = parseH264Slice(nal);
            facts.reference |= (nal[0] & 0x60) != 0;
            facts.bipredictive |= header && header->isB();
        }
        unit = unit.subspan(length);
    }
    return facts;
}

} // namespace rtsp
