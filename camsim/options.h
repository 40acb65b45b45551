#pragma once

#include "camsim/codecs.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace camsim {

/// One of the two streams of a camera.
struct StreamOptions
{
    int width = 0;
    int height = 0;
    int fps = 0;
    int bitrate = 0; ///< bits per second
};

/// How a client may take the stream.
enum class Transport
{
    Tcp,
    Udp,
    Both
};

/// Which logins the ONVIF services take: HTTP digest and basic, or a WS-Security UsernameToken.
enum class OnvifLogin
{
    Both,
    HttpOnly,
    BasicOnly,
    TokenOnly,   ///< refusals are faults
    BareToken,   ///< the same; refusals are HTTP 400 without a body
    DigestToken, ///< refusals are digest challenges, but no digest is accepted
};

/// How the camera reports its clock.
enum class OnvifClock
{
    Utc,
    Local, ///< local time and zone only
    None   ///< GetSystemDateAndTime needs a login
};

/// Which media services the camera has (ONVIF Media and Media 2).
enum class OnvifMedia
{
    One,
    Two,
    Both
};

/// The place of a second device in a discovery answer.
enum class Neighbour
{
    None,
    Before,
    After
};

/// The ways in which ONVIF services of cameras differ.
struct OnvifOptions
{
    OnvifLogin login = OnvifLogin::Both;
    OnvifClock clock = OnvifClock::Utc;
    int port = -1; ///< as the other ports; negative: the HTTP port
    OnvifMedia media = OnvifMedia::One;
    bool snapshots = true;      ///< still pictures over HTTP
    int lenses = 1;             ///< video sources
    bool strictGateway = false; ///< refuses one that is not in the subnet
    bool lostAnswers = false;   ///< closes the connection instead of answering a move
    bool closesAfter401 = false;
};

/// Which logins the streams take.
enum class RtspLogin
{
    Any,    ///< Basic, and digest with MD5 and without qop
    Digest, ///< MD5 without qop only (RFC 2069)
    Qop,    ///< MD5 with qop=auth only; each nonce count once
    Sha256  ///< SHA-256 with qop=auth only (RFC 7616)
};

/// Where the RTP markers of the video are, which belong on the last packet of a picture.
enum class Markers
{
    Right,
    EachSlice, ///< on the last packet of each NAL unit
    Sets,      ///< on parameter sets too
    Never
};

/// The ways in which the RTSP side of cameras differs, for interleaved streams.
struct RtspOptions
{
    RtspLogin login = RtspLogin::Any;
    Markers markers = Markers::Right;
    bool getParameter = true;    ///< in Public, and answered
    double firstPacketAfter = 0; ///< seconds after PLAY
    int sessionTimeout = 0;      ///< seconds without a request until the session ends; 0: never
    bool nagle = false;          ///< segments of an Ethernet, and Nagle's algorithm
};

/// The options of the command line. Ports of 0 are chosen by the system; other ports are the first
/// of a row with one for each camera.
struct Options
{
    int count = 1;
    std::string user = "admin";
    std::string password = "camsim";
    std::vector<std::string> names; ///< cameras without a name are called "Camera 1" ...
    std::vector<std::string> uids;  ///< cameras without one get it from the seed
    std::string seed = "camsim";
    std::string bind = "127.0.0.1";
    int rtspPort = 0;
    int httpPort = 0;
    int discoveryPort = 0;
    int controlPort = 0;
    StreamOptions main{1280, 720, 25, 2'000'000};
    StreamOptions sub{640, 360, 15, 512'000};
    double keyInterval = 1.0; ///< seconds between key frames
    Transport transport = Transport::Both;
    OnvifOptions onvif;
    Neighbour neighbour = Neighbour::None;
    double rebootSeconds = 2.0;
    double moveSeconds = 0; ///< without network when address or port change
    RtspOptions rtsp;
    int lockAfter = 0; ///< wrong logins until the account is locked; 0: never
    VideoCodec codec = VideoCodec::H264;
    H264Profile profile = H264Profile::Baseline;
    int bFrames = 0;
    AudioCodec audioCodec = AudioCodec::Pcmu;
    bool rebootNeeded = false;
    bool altPaths = false;
    int unknownPathStatus = 404;
    bool canned = false;
    bool warm = false;
    bool audio = true;
    bool backChannel = true;
    bool timeCode = true;
    bool multicast = false;
    std::string interface; ///< for multicast; empty: the system's choice
    bool exitWithStdin = false;
    bool exitWithParent = false; ///< the thread that started the process
};

/// Result of reading the command line: options, or the exit code and what to print.
struct CommandLine
{
    std::optional<Options> options;
    int exitCode = 0;
    std::string message;
};

/// Reads "640x360"; false for anything else and for odd or unusable sizes.
bool parseSize(std::string_view text, int &width, int &height);

CommandLine parseCommandLine(const std::vector<std::string> &arguments);

} // namespace camsim
