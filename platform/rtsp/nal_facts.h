#pragma once

#include "platform/base/access_unit.h"

#include <cstdint>
#include <memory>
#include <span>

namespace rtsp {

/// What the slice headers of an access unit say.
struct SliceFacts
{
    bool reference = false;    ///< other pictures may refer to it
    bool bipredictive = false; ///< a B slice is in it
};

enum class NalRole
{
    Ignored,      ///< of no use to a decoder
    Broken,       ///< a slice that cannot be decoded
    ParameterSet, ///< kept by the codec, part of the format
    Prefix,       ///< begins an access unit when it follows a slice
    Slice,
    Suffix ///< belongs to the slices before it
};

/// What a NAL unit is in its stream.
struct NalFacts
{
    NalRole role = NalRole::Ignored;
    bool sequenceSet = false;   ///< ParameterSet: a sequence begins
    bool recoveryPoint = false; ///< Prefix: decoding can start at the next picture
    // Of slices.
    bool firstOfPicture = false; ///< nothing of the same picture, or frame of two fields, before it
    bool key = false;            ///< decoding can start here
    bool intra = false;          ///< predicted from nothing else
    SliceFacts slice;
};

/// What is different between H.264 and H.265 for those who assemble access units. Not thread-safe.
class NalCodec
{
public:
    virtual ~NalCodec() = default;
    /// Reads a NAL unit, which is not empty, in decoding order. Parameter sets are kept.
    virtual NalFacts inspect(std::span<const uint8_t> nal) = 0;
    /// Whether other pictures may refer to one with a slice that begins like this.
    [[nodiscard]] virtual bool mayBeReferred(std::span<const uint8_t> nal) const = 0;
    /// The format that holds for the slice that was inspected last; null while its parameter sets
    /// have not come.
    virtual std::shared_ptr<const base::VideoFormat> format() = 0;
};

} // namespace rtsp
