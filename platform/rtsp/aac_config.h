#pragma once

#include "platform/base/access_unit.h"
#include "platform/rtsp/bit_reader.h"

#include <memory>
#include <optional>
#include <span>
#include <string_view>

namespace rtsp {

/// What is used of an AudioSpecificConfig (ISO/IEC 14496-3 1.6.2.1).
struct AacConfig
{
    unsigned objectType = 0;
    int rate = 0;     ///< samples a second, of the core
    int channels = 0; ///< 0: told in the stream
    int frameSamples = 1024;
};

/// Reads one, and only its own bits; nullopt when it cannot be right.
[[nodiscard]] std::optional<AacConfig> readAacConfig(BitReader &reader);
[[nodiscard]] std::optional<AacConfig> parseAacConfig(std::span<const uint8_t> bytes);

/// The AudioSpecificConfig of AAC-LC; nullopt when there is none for this rate or so many channels.
[[nodiscard]] std::optional<base::Bytes> makeAacConfig(int rate, int channels);

/// The format of a stream with this configuration, where that is right; else of AAC-LC with the
/// rate and the channels that the description tells. Null when neither will do.
[[nodiscard]] std::shared_ptr<const base::AudioFormat>
makeAacFormat(std::span<const uint8_t> configuration, int rate, int channels);

/// What is used of a StreamMuxConfig (ISO/IEC 14496-3 1.7.3.1), the header of LATM.
struct LatmConfig
{
    AacConfig aac;
    base::Bytes configuration; ///< the AudioSpecificConfig
    unsigned subFrames = 1;    ///< frames in an AudioMuxElement
    unsigned frameLengthType = 0;
    unsigned fixedFrameSize = 0; ///< bits, of frameLengthType 1
    unsigned otherDataBits = 0;
};

/// Reads one; nullopt when it is wrong or has several programs or layers, which nobody sends.
[[nodiscard]] std::optional<LatmConfig> readLatmConfig(BitReader &reader,
                                                       std::span<const uint8_t> bytes);

/// Reads hexadecimal digits, as in config=; empty when there are others.
[[nodiscard]] base::Bytes decodeHex(std::string_view text);

/// Copies bits out of bytes that have them, to the front of the result.
[[nodiscard]] base::Bytes copyBits(std::span<const uint8_t> bytes, std::size_t first,
                                   std::size_t count);

} // namespace rtsp
