#pragma once

#include "platform/rtsp/login_policy.h"

#include <memory>
#include <string>

namespace rtsp {

/// Why a stream ended by itself.
enum class StreamEnd
{
    NoSuchHost,  ///< the name of the host has no address
    Silent,      ///< no connection, or no answer to the first request
    Rejected,    ///< the host answered, the port is closed
    TlsFailed,   ///< the host answered, but not over TLS
    Failed,      ///< a protocol error, no answer in time
    KeyChanged,  ///< the camera's TLS key is another one than before (base::KnownKeys)
    Refused,     ///< the camera did not accept the user name or password (401)
    NotFound,    ///< the camera does not know the path (404)
    PathRefused, ///< the camera does not play the path for another reason (400, 403, 454, 500 ...)
    Closed,      ///< the camera ended a stream that was playing
    Stalled,     ///< no video in time
    NoVideo,     ///< the camera's description has no video
    UnknownCodec ///< nor any that can be played
};

/// The end of a stream, and what is known of why.
struct StreamFailure
{
    StreamEnd end = StreamEnd::Failed;
    std::string text = {};  ///< for the log, in English, without credentials
    int status = 0;         ///< RTSP status that the camera answered with; 0: none
    std::string codec = {}; ///< of UnknownCodec: RTP encoding name, else "payload type 26"
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
