#pragma once

#include "platform/rtsp/nal_facts.h"

#include <cstdint>
#include <optional>
#include <span>

namespace rtsp {

/// Types of NAL units (ITU-T H.264 table 7-1).
enum class H264Nal : uint8_t
{
    Slice = 1,
    PartitionA = 2,
    PartitionB = 3,
    PartitionC = 4,
    IdrSlice = 5,
    Sei = 6,
    Sps = 7,
    Pps = 8,
    Delimiter = 9,
    EndOfSequence = 10,
    EndOfStream = 11,
    Filler = 12,
    SpsExtension = 13,
    Prefix = 14,
    AuxiliarySlice = 19
};

/// The type of a NAL unit that is not empty; may be one that is not listed.
inline H264Nal h264TypeOf(std::span<const uint8_t> nal)
{
    return static_cast<H264Nal>(nal[0] & 0x1f);
}

/// What is used of a sequence parameter set (7.3.2.1.1).
struct H264Sps
{
    unsigned id = 0; ///< 0 to 31
    uint8_t profile = 0;
    uint8_t constraints = 0;
    uint8_t level = 0;
    unsigned chromaFormat = 1;
    unsigned lumaDepth = 8;
    unsigned chromaDepth = 8;
    bool separateColourPlanes = false;
    int frameNumberBits = 4;
    unsigned orderCountType = 0;
    bool framesOnly = true;
    int width = 0; ///< pixels, cropped
    int height = 0;

    /// Of the profiles whose sets tell the format of their samples.
    [[nodiscard]] bool tellsSampleFormat() const;
};

/// nal with its header. nullopt when it is no set, is cut or has an impossible size.
[[nodiscard]] std::optional<H264Sps> parseH264Sps(std::span<const uint8_t> nal);

struct H264Pps
{
    unsigned id = 0; ///< 0 to 255
    unsigned spsId = 0;
};

[[nodiscard]] std::optional<H264Pps> parseH264Pps(std::span<const uint8_t> nal);

/// The start of a slice header (7.3.3).
struct H264SliceHeader
{
    unsigned firstMacroblock = 0;
    unsigned type = 0; ///< 0 to 4: P, B, I, SP, SI
    unsigned ppsId = 0;

    [[nodiscard]] bool isB() const { return type == 1; }
    [[nodiscard]] bool isIntra() const { return type == 2 || type == 4; }
};

/// What follows it, for which the sequence parameter set has to be known.
struct H264FieldHeader
{
    unsigned frameNumber = 0;
    bool isField = false;
    bool isBottom = false;
};

[[nodiscard]] std::optional<H264SliceHeader> parseH264Slice(std::span<const uint8_t> nal);
[[nodiscard]] std::optional<H264FieldHeader> parseH264Field(std::span<const uint8_t> nal,
                                                            const H264Sps &sps);

/// The recovery_frame_cnt of a recovery point (D.1.8) in an SEI unit; nullopt when it has none.
[[nodiscard]] std::optional<unsigned> findRecoveryPoint(std::span<const uint8_t> nal);

/// Reads the slice headers of a length-prefixed access unit; lengthSize is the size of the length
/// field in bytes, 1 to 4. Damaged input gives what was readable.
[[nodiscard]] SliceFacts readSliceFacts(std::span<const uint8_t> unit, int lengthSize = 4);

} // namespace rtsp
