#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace rtsp {

/// Types of NAL units (ITU-T H.265 table 7-1) that are told apart here.
enum class H265Nal : uint8_t
{
    LastReferenceRange = 15, ///< up to here even types are not referred to in their sub-layer
    FirstIrap = 16,
    LastIrap = 21,
    LastIrapReserved = 23,
    LastSlice = 31,
    Vps = 32,
    Sps = 33,
    Pps = 34,
    Delimiter = 35,
    EndOfSequence = 36,
    EndOfBitstream = 37,
    Filler = 38,
    PrefixSei = 39,
    SuffixSei = 40
};

inline constexpr std::size_t h265HeaderSize = 2; ///< bytes before a NAL unit's content

/// Of a NAL unit of at least h265HeaderSize bytes.
inline H265Nal h265TypeOf(std::span<const uint8_t> nal)
{
    return static_cast<H265Nal>(nal[0] >> 1 & 0x3f);
}

/// nuh_layer_id; only the pictures of layer 0 are decoded.
inline unsigned h265LayerOf(std::span<const uint8_t> nal)
{
    return (nal[0] & 1u) << 5 | nal[1] >> 3;
}

/// TemporalId
inline unsigned h265TemporalIdOf(std::span<const uint8_t> nal)
{
    const unsigned plusOne = nal[1] & 7u;
    return plusOne > 0 ? plusOne - 1 : 0;
}

/// What is used of a sequence parameter set (7.3.2.2).
struct H265Sps
{
    unsigned id = 0;    ///< 0 to 15
    unsigned vpsId = 0; ///< 0 to 15
    unsigned maxSubLayers = 1;
    bool temporalIdNesting = false;
    /// general_profile_space up to general_level_idc, as in the set
    std::array<uint8_t, 12> profileTierLevel{};
    unsigned chromaFormat = 1;
    unsigned lumaDepth = 8;
    unsigned chromaDepth = 8;
    unsigned maxReordered = 0; ///< pictures that are shown before one decoded before them
    int width = 0;             ///< pixels, cropped
    int height = 0;
};

/// nal with its header. nullopt when it is no set, is cut or has an impossible size.
[[nodiscard]] std::optional<H265Sps> parseH265Sps(std::span<const uint8_t> nal);

/// The id of a video parameter set; nullopt when it is none.
[[nodiscard]] std::optional<unsigned> parseH265VpsId(std::span<const uint8_t> nal);

/// What is used of a picture parameter set (7.3.2.3).
struct H265Pps
{
    unsigned id = 0;    ///< 0 to 63
    unsigned spsId = 0; ///< 0 to 15
    unsigned extraSliceHeaderBits = 0;
};

[[nodiscard]] std::optional<H265Pps> parseH265Pps(std::span<const uint8_t> nal);

/// Whether a slice segment is the first of its picture; its NAL unit has at least 3 bytes.
inline bool isFirstH265Segment(std::span<const uint8_t> nal)
{
    return (nal[h265HeaderSize] & 0x80) != 0;
}

/// slice_pic_parameter_set_id of a slice segment (7.3.6.1); nullopt when it is cut.
[[nodiscard]] std::optional<unsigned> parseH265SlicePpsId(std::span<const uint8_t> nal);

enum class H265SliceType
{
    B,
    P,
    I
};

/// The type of a picture's first slice segment; nullopt when it is another one, or cut.
[[nodiscard]] std::optional<H265SliceType> parseH265SliceType(std::span<const uint8_t> nal,
                                                              const H265Pps &pps);

} // namespace rtsp
