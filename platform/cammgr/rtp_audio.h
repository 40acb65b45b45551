#pragma once

namespace cammgr {

/// A kind of camera audio that can be played and recorded.
struct RtpAudio
{
    const char *encoding;    ///< RTP encoding name (RFC 3551, RFC 3640, RFC 3016)
    const char *depayloader; ///< element that unpacks it
};

/// The kind with this encoding name, or null when it is not known here.
const RtpAudio *findRtpAudio(const char *encoding);

} // namespace cammgr
