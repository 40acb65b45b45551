#include "camsim/options.h"

#include <charconv>
#include <functional>
#include <map>
#include <string_view>

namespace camsim {

namespace {

const char *const helpText = R"(Usage: camsim [options]

Starts simulated network cameras and prints one line of JSON for each when it is ready.

  --count N               cameras (1)
  --user U, --password P  the login of every camera (admin, camsim)
  --name TEXT             name of the next camera; may be repeated
  --uid UUID              endpoint of the next camera; may be repeated
  --seed TEXT             UIDs and hardware addresses are derived from it (camsim)
  --bind ADDR             address of the cameras (127.0.0.1)
  --rtsp-port BASE, --http-port BASE, --discovery-port BASE
                          first of a row of ports, one for each camera; 0: any free port (0)
  --control-port PORT     control connection, one for the process; 0: any free port (0)
  --main-size WxH, --main-fps N, --main-bitrate BITS    (1280x720, 25, 2000000)
  --sub-size WxH, --sub-fps N, --sub-bitrate BITS       (640x360, 15, 512000)
  --codec h264|h265|mjpeg (h264)
  --profile baseline|main|high, --b-frames N            of H.264 (baseline, 0)
  --audio pcmu|pcma|g726|aac|latm|l16|opus              (pcmu)
  --key-interval SECONDS  distance of key frames (1)
  --canned                encode two seconds once and play them in a loop: costs nearly nothing
  --warm                  encode all the time, so that a client joins between two key frames
  --alt-paths             serve /cam/main and /cam/sub instead of /live/0 and /live/1
  --unknown-path N        RTSP status of a DESCRIBE for any other path (404)
  --transport tcp|udp|both (both)
  --rtsp-login any|digest|qop|sha256  (any)
                          digest: MD5 without qop; qop: MD5 with qop=auth and counted nonces
  --lock-after N          lock the account at the Nth wrong login, of streams, services and
                          command requests together (0: never)
  --no-get-parameter      not in Public, and refused
  --first-packet-after S  seconds from PLAY to the first packet (0)
  --markers right|slices|sets|never  which RTP packets of H.264 have the marker (right)
  --nagle                 segments of 1448 bytes and Nagle's algorithm, as on an Ethernet
  --onvif-login http|basic|token|bare-token|digest-token|both  (both)
                          bare-token: refused with 400 and no fault; digest-token: challenges for
                          a digest, accepts tokens only
  --onvif-port BASE       ONVIF services on ports other than the web pages
  --onvif-clock utc|local|none  (utc): local: local time only; none: not without a login
  --onvif-media 1|2|both  the media services it has (1)
  --no-snapshots          no address for still pictures
  --lenses N              video sources, 1 or 2 (1)
  --strict-gateway        refuse a gateway outside the subnet, and any while DHCP is on
  --lost-answers          change address and ports without answering the request
  --close-after-401       close a connection silently after a refusal, at the next request
  --neighbour before|after  discovery answers list a second device
  --session-timeout S     end a session after S seconds without a request (0: never)
  --no-audio, --no-back-channel, --no-timecode
  --reboot-needed         a new network configuration takes effect after a reboot only
  --reboot-time SECONDS   how long a reboot takes (2)
  --move-time SECONDS     how long the camera is unreachable when its address or port changes (0)
  --multicast             also answer discovery on 239.255.255.250:3702
  --interface IF          the interface for --multicast
  --exit-with-stdin       end when standard input closes
  --exit-with-parent      end when the thread that started this process ends
  --help

Control connection, one command a line: CAMERA-INDEX COMMAND [ARGUMENTS]; "help" lists them.
)";

class Reader
{
public:
    explicit Reader(Options &options)
    {
        text("--user", options.user);
        text("--password", options.password);
        text("--seed", options.seed);
        text("--bind", options.bind);
        text("--interface", options.interface);
        number("--count", options.count, 0, 1000);
        number("--rtsp-port", options.rtspPort, 0, 65535);
        number("--http-port", options.httpPort, 0, 65535);
        number("--discovery-port", options.discoveryPort, 0, 65535);
        number("--onvif-port", options.onvif.port, 0, 65535);
        number("--lenses", options.onvif.lenses, 1, 2);
        number("--control-port", options.controlPort, 0, 65535);
        number("--session-timeout", options.rtsp.sessionTimeout, 0, 86400);
        stream("--main", options.main);
        stream("--sub", options.sub);
        seconds("--key-interval", options.keyInterval);
        seconds("--reboot-time", options.rebootSeconds);
        seconds("--move-time", options.moveSeconds);
        list("--name", options.names);
        list("--uid", options.uids);
        flag("--canned", options.canned, true);
        flag("--warm", options.warm, true);
        flag("--alt-paths", options.altPaths, true);
        number("--unknown-path", options.unknownPathStatus, 400, 599);
        flag("--no-audio", options.audio, false);
        flag("--no-back-channel", options.backChannel, false);
        flag("--no-get-parameter", options.rtsp.getParameter, false);
        flag("--nagle", options.rtsp.nagle, true);
        number("--lock-after", options.lockAfter, 0, 100);
        number("--b-frames", options.bFrames, 0, 4);
        seconds("--first-packet-after", options.rtsp.firstPacketAfter);
        choice(
            "--codec", options.codec,
            {{"h264", VideoCodec::H264}, {"h265", VideoCodec::H265}, {"mjpeg", VideoCodec::Mjpeg}});
        choice("--profile", options.profile,
               {{"baseline", H264Profile::Baseline},
                {"main", H264Profile::Main},
                {"high", H264Profile::High}});
        choice("--audio", options.audioCodec,
               {{"pcmu", AudioCodec::Pcmu},
                {"pcma", AudioCodec::Pcma},
                {"g726", AudioCodec::G726},
                {"aac", AudioCodec::Aac},
                {"latm", AudioCodec::Latm},
                {"l16", AudioCodec::L16},
                {"opus", AudioCodec::Opus}});
        choice("--rtsp-login", options.rtsp.login,
               {{"any", RtspLogin::Any},
                {"digest", RtspLogin::Digest},
                {"qop", RtspLogin::Qop},
                {"sha256", RtspLogin::Sha256}});
        choice("--markers", options.rtsp.markers,
               {{"right", Markers::Right},
                {"slices", Markers::EachSlice},
                {"sets", Markers::Sets},
                {"never", Markers::Never}});
        flag("--no-timecode", options.timeCode, false);
        flag("--reboot-needed", options.rebootNeeded, true);
        flag("--strict-gateway", options.onvif.strictGateway, true);
        flag("--no-snapshots", options.onvif.snapshots, false);
        flag("--lost-answers", options.onvif.lostAnswers, true);
        flag("--close-after-401", options.onvif.closesAfter401, true);
        flag("--multicast", options.multicast, true);
        flag("--exit-with-stdin", options.exitWithStdin, true);
        flag("--exit-with-parent", options.exitWithParent, true);
        choice("--transport", options.transport,
               {{"tcp", Transport::Tcp}, {"udp", Transport::Udp}, {"both", Transport::Both}});
        choice("--onvif-login", options.onvif.login,
               {{"http", OnvifLogin::HttpOnly},
                {"basic", OnvifLogin::BasicOnly},
                {"token", OnvifLogin::TokenOnly},
                {"bare-token", OnvifLogin::BareToken},
                {"digest-token", OnvifLogin::DigestToken},
                {"both", OnvifLogin::Both}});
        choice(
            "--onvif-clock", options.onvif.clock,
            {{"utc", OnvifClock::Utc}, {"local", OnvifClock::Local}, {"none", OnvifClock::None}});
        choice("--onvif-media", options.onvif.media,
               {{"1", OnvifMedia::One}, {"2", OnvifMedia::Two}, {"both", OnvifMedia::Both}});
        choice("--neighbour", options.neighbour,
               {{"before", Neighbour::Before}, {"after", Neighbour::After}});
    }

    /// Empty when all arguments were understood, else what is wrong.
    std::string read(const std::vector<std::string> &arguments)
    {
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const std::string &name = arguments[i];
            if (const auto flag = m_flags.find(name); flag != m_flags.end()) {
                flag->second();
                continue;
            }
            const auto valued = m_valued.find(name);
            if (valued == m_valued.end())
                return "unknown option " + name;
            if (++i == arguments.size())
                return name + " needs a value";
            if (!valued->second(arguments[i]))
                return "wrong value for " + name + ": " + arguments[i];
        }
        return {};
    }

private:
    static bool parse(std::string_view text, int &value)
    {
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        return error == std::errc{} && end == text.data() + text.size();
    }

    void text(const char *name, std::string &target)
    {
        m_valued[name] = [&target](const std::string &value) {
            target = value;
            return true;
        };
    }

    template <typename Value>
    void choice(const char *name, Value &target, std::map<std::string, Value> kinds)
    {
        m_valued[name] = [&target, kinds = std::move(kinds)](const std::string &value) {
            const auto kind = kinds.find(value);
            if (kind != kinds.end())
                target = kind->second;
            return kind != kinds.end();
        };
    }

    void list(const char *name, std::vector<std::string> &target)
    {
        m_valued[name] = [&target](const std::string &value) {
            target.push_back(value);
            return true;
        };
    }

    void number(const std::string &name, int &target, int low, int high)
    {
        m_valued[name] = [&target, low, high](const std::string &value) {
            return parse(value, target) && target >= low && target <= high;
        };
    }

    void seconds(const char *name, double &target)
    {
        m_valued[name] = [&target](const std::string &value) {
            const char *end = value.data() + value.size();
            const auto [stop, error] = std::from_chars(value.data(), end, target);
            return error == std::errc{} && stop == end && target > 0 && target < 1e5;
        };
    }

    void stream(const std::string &name, StreamOptions &target)
    {
        m_valued[name + "-size"] = [&target](const std::string &value) {
            return parseSize(value, target.width, target.height);
        };
        number(name + "-fps", target.fps, 1, 120);
        number(name + "-bitrate", target.bitrate, 10'000, 100'000'000);
    }

    void flag(const char *name, bool &target, bool value)
    {
        m_flags[name] = [&target, value] { target = value; };
    }

    std::map<std::string, std::function<bool(const std::string &)>> m_valued;
    std::map<std::string, std::function<void()>> m_flags;
};

} // namespace

bool parseSize(std::string_view text, int &width, int &height)
{
    const char *end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    if (first.ec != std::errc{} || first.ptr == end || *first.ptr != 'x')
        return false;
    const auto second = std::from_chars(first.ptr + 1, end, height);
    if (second.ec != std::errc{} || second.ptr != end)
        return false;
    const auto usable = [](int side) { return side >= 64 && side <= 4096 && side % 2 == 0; };
    return usable(width) && usable(height);
}

CommandLine parseCommandLine(const std::vector<std::string> &arguments)
{
    CommandLine result;
    for (const std::string &argument : arguments) {
        if (argument == "--help") {
            result.message = helpText;
            return result;
        }
    }
    Options options;
    std::string wrong = Reader(options).read(arguments);
    if (wrong.empty() && options.bFrames > 0 && options.profile == H264Profile::Baseline)
        wrong = "--b-frames needs --profile main or high";
    if (wrong.empty()) {
        result.options = options;
    } else {
        result.exitCode = 2;
        result.message = "camsim: " + wrong + "\n";
    }
    return result;
}

} // namespace camsim
