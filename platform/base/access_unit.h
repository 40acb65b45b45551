#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace base {

using SteadyClock = std::chrono::steady_clock;
using Bytes = std::vector<uint8_t>;

enum class VideoCodec
{
    H264, ///< ITU-T H.264
    H265, ///< ITU-T H.265
    Jpeg  ///< ITU-T T.81, each frame by itself
};

/// What a decoder and a file have to know of a video stream before its first frame.
struct VideoFormat
{
    VideoCodec codec = VideoCodec::H264;
    /// H.264: AVCDecoderConfigurationRecord, H.265: HEVCDecoderConfigurationRecord (ISO/IEC
    /// 14496-15 5.3.3, 8.3.3), both with length fields of 4 bytes; Jpeg: empty.
    Bytes configuration = {};
    int width = 0;  ///< pixels, cropped; 0 while unknown
    int height = 0; ///< pixels, cropped; 0 while unknown

    bool operator==(const VideoFormat &) const = default;
};

enum class AudioCodec
{
    Pcmu, ///< G.711 mu-law, one byte a sample
    Pcma, ///< G.711 A-law
    G726, ///< little-endian packing, bitsPerSample 2 to 5
    L16,  ///< signed 16 bit, in the byte order of the network
    Aac,  ///< raw_data_blocks without headers, one in a unit
    Opus  ///< one packet in a unit
};

struct AudioFormat
{
    AudioCodec codec = AudioCodec::Pcmu;
    int rate = 8000; ///< samples a second, at least 1
    int channels = 1;
    int bitsPerSample = 0;    ///< of G726
    Bytes configuration = {}; ///< Aac: AudioSpecificConfig (ISO/IEC 14496-3 1.6.2.1), never empty

    bool operator==(const AudioFormat &) const = default;
};

/// One frame of the camera as received. Its parts never change once it was handed over, so that
/// copies may be read on any thread.
struct AccessUnit
{
    /// H.264 and H.265: NAL units, each behind a big-endian length of 4 bytes, in decoding order,
    /// without the parameter sets, which are in the format; Jpeg: a whole JFIF file.
    std::shared_ptr<const Bytes> payload;
    std::shared_ptr<const VideoFormat> format; ///< another object when something of it changed
    uint64_t number = 0;                       ///< counts from 1 within a stream
    uint64_t time = 0;               ///< presentation time since the start of the stream, ns
    bool key = false;                ///< decoding can start here
    bool reference = false;          ///< other frames are predicted from this one
    bool bipredictive = false;       ///< holds B slices: presentation order is not decoding order
    SteadyClock::time_point arrived; ///< its last packet

    std::size_t size() const { return payload ? payload->size() : 0; }
};

/// A piece of the camera's sound as it came.
struct AudioUnit
{
    std::shared_ptr<const Bytes> payload;
    std::shared_ptr<const AudioFormat> format;
    uint64_t time = 0; ///< as for AccessUnit, on the same time line
};

} // namespace base
