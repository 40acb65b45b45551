#pragma once

#include "platform/rtsp/login_policy.h"

#include <memory>
#include <string>

namespace rtsp {

/// Why a stream ended by itself.
enum class StreamEnd
{
    Failed,      ///< no connection, a protocol error, no answer in time
    KeyChanged,  ///< the camera's TLS key is another one than before (base::KnownKeys)
    Refused,     ///< the camera did not accept the user name or password (401)
    NotFound,    ///< the camera does not know the path (404)
    PathRefused, ///< the camera does not play the path for another reason (400, 403, 454, 500 ...)
    Closed,      ///< the camera ended a stream that was playing
    Stalled,     ///< no video in time
    NoVideo      ///< the camera's description has no video that can be played
};

/// How the media travel from the camera.
enum class Transport
{
    Automatic,   ///< inside the RTSP connection; over UDP when that is refused or nothing comes
    Interleaved, ///< inside the RTSP connection (RFC 2326 10.12) only
    Udp          ///< over UDP (unicast) only
};

/// What to receive, and where from.
struct StreamRequest
{
    /// rtsp:// or rtsps://; http:// or https:// for RTSP through a web server. Without credentials.
    std::string url;
    std::string username = {}; ///< UTF-8
    std::string password = {}; ///< UTF-8
    /// What of the password may be sent to the camera; shared with its other connections.
    std::shared_ptr<LoginPolicy> login = std::make_shared<LoginPolicy>();
    Transport transport = Transport::Automatic;
    bool wantsAudio = true; ///< false: the sound is described, but not sent
};

} // namespace rtsp
