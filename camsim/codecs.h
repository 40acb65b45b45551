#pragma once

namespace camsim {

enum class VideoCodec
{
    H264,
    H265,
    Mjpeg ///< each frame a baseline JPEG of its own (RFC 2435)
};

/// Profiles of H.264 (Rec. ITU-T H.264, A.2).
enum class H264Profile
{
    Baseline,
    Main, ///< CABAC
    High  ///< CABAC and 8x8 transforms
};

enum class AudioCodec
{
    Pcmu,
    Pcma,
    G726, ///< 32 kbit/s
    Aac,  ///< MPEG4-GENERIC (RFC 3640)
    Latm, ///< MP4A-LATM (RFC 6416)
    L16,  ///< 16 kHz
    Opus
};

} // namespace camsim
