#include "platform/rtsp/h264_codec.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/nal_units.h"

#include <algorithm>

namespace rtsp {

namespace {

constexpr std::size_t maxSetSize = 4096; ///< bytes
constexpr std::size_t maxSpsCount = 31;  ///< that a configuration record can hold
constexpr std::size_t maxPpsCount = 255;
constexpr unsigned monotonousOrder = 2; ///< pic_order_cnt_type: output order is decoding order

bool isSame(const base::Bytes &a, std::span<const uint8_t> b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

unsigned macroblocksOf(const H264Sps &sps)
{
    constexpr int side = 16;
    const auto columns = static_cast<unsigned>((sps.width + side - 1) / side);
    const auto rows = static_cast<unsigned>((sps.height + side - 1) / side);
    // Cropped away at the most: what a row and a column of macroblocks, or of pairs of them, hold.
    return (columns + 1) * (rows + 3);
}

void appendSet(base::Bytes &bytes, const base::Bytes &nal)
{
    append(bytes, nal.size(), 2);
    append(bytes, nal);
}

} // namespace

H264Codec::H264Codec(std::string_view spropSets)
{
    forEachSprop(
        spropSets, [this](std::span<const uint8_t> nal) { inspect(nal); });
}

NalFacts H264Codec::inspect(std::span<const uint8_t> nal)
{
    NalFacts facts;
    switch (h264TypeOf(nal)) {
    case H264Nal::Slice:
    case H264Nal::PartitionA:
    case H264Nal::IdrSlice:
        return inspectSlice(nal);
    case H264Nal::Sps:
        facts.sequenceSet = keepSps(nal);
        facts.role = facts.sequenceSet ? NalRole::ParameterSet : NalRole::Ignored;
        break;
    case H264Nal::Pps:
        facts.role = keepPps(nal) ? NalRole::ParameterSet : NalRole::Ignored;
        break;
    case H264Nal::Sei: {
        facts.role = NalRole::Prefix;
        // Where IDR pictures come, decoding need not start at one that is refreshed step by step.
        const std::optional<unsigned> frames = findRecoveryPoint(nal);
        facts.recoveryPoint = frames && (*frames == 0 || !m_idrSeen);
        break;
    }
    case H264Nal::Delimiter:
    case H264Nal::SpsExtension:
    case H264Nal::Prefix:
        facts.role = NalRole::Prefix;
        break;
    case H264Nal::PartitionB:
    case H264Nal::PartitionC:
    case H264Nal::EndOfSequence:
    case H264Nal::EndOfStream:
    case H264Nal::AuxiliarySlice:
        facts.role = NalRole::Suffix;
        break;
    default:
        break;
    }
    return facts;
}

NalFacts H264Codec::inspectSlice(std::span<const uint8_t> nal)
{
    NalFacts facts;
    facts.role = NalRole::Broken;
    const std::optional<H264SliceHeader> header = parseH264Slice(nal);
    if (!header)
        return facts;
    // Without its parameter sets nothing can be decoded of it, and random bytes rarely name them.
    const bool forbiddenBit = (nal[0] & 0x80) != 0;
    if (forbiddenBit || (!m_pps.empty() && !m_pps.contains(header->ppsId)))
        return facts;
    m_activePps = header->ppsId;
    const Sps *sps = activeSps();
    if (sps && header->firstMacroblock >= macroblocksOf(sps->read))
        return facts;
    facts.role = NalRole::Slice;
    facts.key = h264TypeOf(nal) == H264Nal::IdrSlice;
    facts.intra = header->isIntra();
    facts.slice.reference = (nal[0] & 0x60) != 0;
    facts.slice.bipredictive =
        header->isB() && !(sps && sps->read.orderCountType == monotonousOrder);
    const bool first = header->firstMacroblock == 0;
    facts.firstOfPicture = first && !(sps && isSecondField(nal, first, sps->read));
    m_idrSeen |= facts.key;
    return facts;
}

bool H264Codec::mayBeReferred(std::span<const uint8_t> nal) const
{
    return nal.empty() || (nal[0] & 0x60) != 0;
}

// Both fields of a frame are one unit to decoders and files.
bool H264Codec::isSecondField(std::span<const uint8_t> nal, bool firstMacroblock,
                              const H264Sps &sps)
{
    if (sps.framesOnly || !firstMacroblock)
        return false;
    const H264FieldHeader field = parseH264Field(nal, sps).value_or(H264FieldHeader());
    const bool second = field.isField && m_field.isField && field.isBottom != m_field.isBottom &&
                        field.frameNumber == m_field.frameNumber;
    m_field = second ? H264FieldHeader() : field;
    return second;
}

bool H264Codec::keepSps(std::span<const uint8_t> nal)
{
    const std::optional<H264Sps> read = parseH264Sps(nal);
    if (!read || nal.size() > maxSetSize)
        return false;
    Sps &kept = m_sps[read->id];
    if (!isSame(kept.nal, nal)) {
        kept = {base::Bytes(nal.begin(), nal.end()), *read};
        m_format.noteChange();
    }
    return true;
}

bool H264Codec::keepPps(std::span<const uint8_t> nal)
{
    const std::optional<H264Pps> read = parseH264Pps(nal);
    if (!read || nal.size() > maxSetSize)
        return false;
    Pps &kept = m_pps[read->id];
    if (!isSame(kept.nal, nal)) {
        kept = {base::Bytes(nal.begin(), nal.end()), *read};
        m_format.noteChange();
    }
    return true;
}

const H264Codec::Sps *H264Codec::activeSps() const
{
    const auto pps = m_pps.find(m_activePps);
    if (pps == m_pps.end())
        return nullptr;
    const auto sps = m_sps.find(pps->second.read.spsId);
    return sps == m_sps.end() ? nullptr : &sps->second;
}

// AVCDecoderConfigurationRecord (ISO/IEC 14496-15 5.3.3.1)
base::Bytes H264Codec::configuration(const Sps &active) const
{
    const auto spsCount = static_cast<uint8_t>(std::min(m_sps.size(), maxSpsCount));
    const auto ppsCount = static_cast<uint8_t>(std::min(m_pps.size(), maxPpsCount));
    base::Bytes record = {1, active.read.profile, active.read.constraints, active.read.level, 0xff};
    record.push_back(static_cast<uint8_t>(0xe0 | spsCount));
    appendSet(record, active.nal); // some take the size from the first one
    for (std::size_t left = spsCount - 1u; const auto &[id, sps] : m_sps)
        if (&sps != &active && left-- > 0)
            appendSet(record, sps.nal);
    record.push_back(ppsCount);
    for (std::size_t left = ppsCount; const auto &[id, pps] : m_pps)
        if (left-- > 0)
            appendSet(record, pps.nal);
    if (active.read.tellsSampleFormat()) {
        record.push_back(static_cast<uint8_t>(0xfc | active.read.chromaFormat));
        record.push_back(static_cast<uint8_t>(0xf8 | (active.read.lumaDepth - 8)));
        record.push_back(static_cast<uint8_t>(0xf8 | (active.read.chromaDepth - 8)));
        record.push_back(0);
    }
    return record;
}

std::shared_ptr<const base::VideoFormat> H264Codec::format()
{
    const Sps *active = activeSps();
    return m_format.current(active, [&] {
        return base::VideoFormat{.codec = base::VideoCodec::H264,
                                 .configuration = configuration(*active),
                                 .width = active->read.width,
                                 .height = active->read.height};
    });
}

} // namespace rtsp
