#pragma once

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
    int port = -1;              ///< as the other ports; negative: the HTTP port
    int lenses = 1;             ///< video sources
    bool strictGateway = false; ///< refuses one that is not in the subnet
    bool lostAnswers = false;   ///< closes the connection instead of answering a move
    bool closesAfter401 = false;
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
    int sessionTimeout = 0; ///< seconds without a request until the session ends; 0: never
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
