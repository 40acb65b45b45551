#include "platform/rtsp/h265_codec.h"

#include "platform/rtsp/byte_order.h"
#include "platform/rtsp/nal_units.h"

#include <algorithm>
#include <vector>

namespace rtsp {

namespace {

constexpr std::size_t maxSetSize = 4096; ///< bytes

void appendArray(base::Bytes &record, H265Nal type, const std::vector<const base::Bytes *> &sets)
{
    constexpr uint8_t complete = 0x80; ///< all sets of the type are here
    record.push_back(static_cast<uint8_t>(complete | static_cast<uint8_t>(type)));
    append(record, sets.size(), 2);
    for (const base::Bytes *set : sets) {
        append(record, set->size(), 2);
        append(record, *set);
    }
}

} // namespace

void H265Codec::addSets(std::string_view sprop)
{
    forEachSprop(
        sprop, [this](std::span<const uint8_t> nal) { inspect(nal); });
}

NalFacts H265Codec::inspect(std::span<const uint8_t> nal)
{
    NalFacts facts;
    if (nal.size() <= h265HeaderSize || h265LayerOf(nal) > 0)
        return facts;
    const H265Nal type = h265TypeOf(nal);
    if (type <= H265Nal::LastSlice)
        return inspectSlice(nal);
    switch (type) {
    case H265Nal::Vps:
    case H265Nal::Sps:
    case H265Nal::Pps:
        if (!keepSet(nal))
            break;
        facts.role = NalRole::ParameterSet;
        facts.sequenceSet = type == H265Nal::Sps;
        break;
    case H265Nal::Delimiter:
    case H265Nal::PrefixSei:
        facts.role = NalRole::Prefix;
        break;
    case H265Nal::EndOfSequence:
    case H265Nal::EndOfBitstream:
    case H265Nal::SuffixSei:
        facts.role = NalRole::Suffix;
        break;
    default:
        break;
    }
    return facts;
}

NalFacts H265Codec::inspectSlice(std::span<const uint8_t> nal)
{
    NalFacts facts;
    const std::optional<unsigned> ppsId = parseH265SlicePpsId(nal);
    if (!ppsId)
        return facts;
    const H265Nal type = h265TypeOf(nal);
    m_activePps = *ppsId;
    facts.role = NalRole::Slice;
    facts.firstOfPicture = isFirstH265Segment(nal);
    facts.key = type >= H265Nal::FirstIrap && type <= H265Nal::LastIrap;
    facts.slice.reference = mayBeReferred(nal);
    const Pps *pps = activePps();
    const Sps *sps = activeSps();
    if (!pps || !sps)
        return facts;
    const std::optional<H265SliceType> slice = parseH265SliceType(nal, pps->read);
    // Segments that follow are of the kind of the first one, as far as anybody asks.
    facts.intra = !facts.firstOfPicture || slice == H265SliceType::I;
    // Many encoders predict B slices from earlier pictures alone: no order changes then.
    facts.slice.bipredictive = slice == H265SliceType::B && sps->read.maxReordered > 0;
    return facts;
}

bool H265Codec::mayBeReferred(std::span<const uint8_t> nal) const
{
    if (nal.size() < h265HeaderSize)
        return true;
    const H265Nal type = h265TypeOf(nal);
    if (type > H265Nal::LastReferenceRange || static_cast<unsigned>(type) % 2 != 0)
        return true;
    // It may still be referred to from higher sub-layers.
    const Sps *sps = activeSps();
    return !sps || h265TemporalIdOf(nal) + 1 < sps->read.maxSubLayers;
}

bool H265Codec::replace(base::Bytes &kept, std::span<const uint8_t> nal)
{
    if (std::equal(kept.begin(), kept.end(), nal.begin(), nal.end()))
        return false;
    kept.assign(nal.begin(), nal.end());
    m_format.noteChange();
    return true;
}

bool H265Codec::keepSet(std::span<const uint8_t> nal)
{
    if (nal.size() > maxSetSize)
        return false;
    if (const std::optional<unsigned> vps = parseH265VpsId(nal)) {
        replace(m_vps[*vps], nal);
        return true;
    }
    if (const std::optional<H265Sps> sps = parseH265Sps(nal)) {
        Sps &kept = m_sps[sps->id];
        if (replace(kept.nal, nal))
            kept.read = *sps;
        return true;
    }
    if (const std::optional<H265Pps> pps = parseH265Pps(nal)) {
        Pps &kept = m_pps[pps->id];
        if (replace(kept.nal, nal))
            kept.read = *pps;
        return true;
    }
    return false;
}

const H265Codec::Pps *H265Codec::activePps() const
{
    const auto pps = m_pps.find(m_activePps);
    return pps == m_pps.end() ? nullptr : &pps->second;
}

const H265Codec::Sps *H265Codec::activeSps() const
{
    const Pps *pps = activePps();
    const auto sps = pps ? m_sps.find(pps->read.spsId) : m_sps.end();
    return sps == m_sps.end() ? nullptr : &sps->second;
}

// HEVCDecoderConfigurationRecord (ISO/IEC 14496-15 8.3.3.1)
base::Bytes H265Codec::configuration(const Sps &active) const
{
    const H265Sps &sps = active.read;
    base::Bytes record = {1};
    append(record, sps.profileTierLevel);
    append(record, 0xf000, 2); // min_spatial_segmentation_idc
    record.push_back(0xfc);    // parallelismType
    record.push_back(static_cast<uint8_t>(0xfc | sps.chromaFormat));
    record.push_back(static_cast<uint8_t>(0xf8 | (sps.lumaDepth - 8)));
    record.push_back(static_cast<uint8_t>(0xf8 | (sps.chromaDepth - 8)));
    append(record, 0, 2); // avgFrameRate
    constexpr unsigned lengthSizeMinusOne = 3;
    record.push_back(static_cast<uint8_t>(
        sps.maxSubLayers << 3 | (sps.temporalIdNesting ? 1u : 0u) << 2 | lengthSizeMinusOne));
    std::vector<const base::Bytes *> vpsSets;
    for (const auto &[id, nal] : m_vps)
        vpsSets.push_back(&nal);
    std::vector<const base::Bytes *> spsSets = {&active.nal};
    for (const auto &[id, each] : m_sps)
        if (&each != &active)
            spsSets.push_back(&each.nal);
    std::vector<const base::Bytes *> ppsSets;
    for (const auto &[id, each] : m_pps)
        ppsSets.push_back(&each.nal);
    record.push_back(vpsSets.empty() ? 2 : 3);
    if (!vpsSets.empty())
        appendArray(record, H265Nal::Vps, vpsSets);
    appendArray(record, H265Nal::Sps, spsSets);
    appendArray(record, H265Nal::Pps, ppsSets);
    return record;
}

std::shared_ptr<const base::VideoFormat> H265Codec::format()
{
    const Sps *active = activeSps();
    return m_format.current(active, [&] {
        return base::VideoFormat{.codec = base::VideoCodec::H265,
                                 .configuration = configuration(*active),
                                 .width = active->read.width,
                                 .height = active->read.height};
    });
}

} // namespace rtsp
