#pragma once

#include <cstdint>
#include <string>

namespace base {

/// A TCP service of a camera.
struct Endpoint
{
    std::string host; ///< name, IPv4 or IPv6 address (without brackets)
    uint16_t port = 0;
    bool tls = false;

    bool operator==(const Endpoint &) const = default;
};

/// What a camera's "hostname" text says. See RtspPlayer_Create for the forms.
struct CameraAddress
{
    enum class Kind
    {
        Host,   ///< endpoint is set; the port is the scheme's usual one when none was named
        Uid,    ///< only uid is set; it has to be looked up on the local network
        Invalid ///< nothing that could be reached
    };

    Kind kind = Kind::Invalid;
    Endpoint endpoint;
    bool hasPort = false; ///< the text named the port
    std::string path;     ///< of a full address, with its query; empty for none
    std::string username; ///< of a full address, percent-decoded
    std::string password;
    std::string uid; ///< also of a Host that may as well be a UID: a name without dots
};

/// Reads a "hostname" text (UTF-8). Blanks around it are ignored. Any text is safe.
CameraAddress parseCameraAddress(const std::string &text);

/// Reads a full rtsp://, rtsps://, http:// or https:// address; Invalid for anything else.
CameraAddress parseUrl(const std::string &text);

/// "rtsp://host[:port]" or "rtsps://...", with brackets around an IPv6 address and without the
/// port where it is the usual one.
std::string rtspOrigin(const Endpoint &endpoint);

/// Whether a text can be part of a request line: no blanks and no control characters.
bool hasNoWhitespace(const std::string &text);

} // namespace base
