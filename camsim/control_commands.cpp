#include "camsim/control_server.h"

#include <charconv>
#include <functional>
#include <optional>
#include <sstream>
#include <utility>

namespace camsim {

namespace {

using Arguments = std::vector<std::string>;
/// Returns the answer's text after "OK", or nullopt when the arguments are wrong.
using Run = std::function<std::optional<std::string>(Camera &camera, const Arguments &arguments)>;

struct Command
{
    const char *usage;
    Run run;
};

const std::optional<std::string> done{""};
const std::optional<std::string> wrong{};

template <typename Number>
std::optional<Number> number(const Arguments &arguments, Number low, Number high)
{
    Number value{};
    if (arguments.size() != 1)
        return std::nullopt;
    const char *end = arguments[0].data() + arguments[0].size();
    const auto [stop, error] = std::from_chars(arguments[0].data(), end, value);
    if (error != std::errc{} || stop != end || value < low || value > high)
        return std::nullopt;
    return value;
}

/// A command with a number.
template <typename Number>
Run withNumber(Number low, Number high, std::function<void(Camera &, Number)> run)
{
    return [=](Camera &camera, const Arguments &arguments) {
        const std::optional<Number> value = number<Number>(arguments, low, high);
        if (!value)
            return wrong;
        run(camera, *value);
        return done;
    };
}

/// A command without an argument (on) or followed by "on" or "off".
Run withSwitch(std::function<void(Camera &, bool)> run)
{
    return [run = std::move(run)](Camera &camera, const Arguments &arguments) {
        const bool off = arguments == Arguments{"off"};
        if (!arguments.empty() && !off && arguments != Arguments{"on"})
            return wrong;
        run(camera, !off);
        return done;
    };
}

Run plain(std::function<void(Camera &)> run)
{
    return [run = std::move(run)](Camera &camera, const Arguments &arguments) {
        if (!arguments.empty())
            return wrong;
        run(camera);
        return done;
    };
}

Run commandFault(CommandForms::Fault fault)
{
    return withSwitch([fault](Camera &camera, bool on) {
        camera.forms().setFault(on ? fault : CommandForms::Fault::None);
    });
}

/// The streams named by an argument: "main", "sub", or both when there is none.
std::optional<std::vector<StreamKind>> streams(const Arguments &arguments, std::size_t at)
{
    if (arguments.size() == at)
        return std::vector{StreamKind::Main, StreamKind::Sub};
    if (arguments.size() == at + 1 && arguments[at] == "main")
        return std::vector{StreamKind::Main};
    if (arguments.size() == at + 1 && arguments[at] == "sub")
        return std::vector{StreamKind::Sub};
    return std::nullopt;
}

std::optional<std::string> resize(Camera &camera, const Arguments &arguments)
{
    int width = 0;
    int height = 0;
    if (arguments.empty() || !parseSize(arguments[0], width, height))
        return wrong;
    const auto which = streams(arguments, 1);
    if (!which)
        return wrong;
    for (const StreamKind stream : *which)
        camera.resize(stream, width, height);
    return done;
}

std::optional<std::string> keyFrame(Camera &camera, const Arguments &arguments)
{
    const auto which = streams(arguments, 0);
    if (!which)
        return wrong;
    for (const StreamKind stream : *which)
        camera.requestKeyFrame(stream);
    return done;
}

/// A command that cuts the next of something, and then says nothing or closes.
Run half(std::atomic<RtspFaults::Half> RtspFaults::*what)
{
    return [what](Camera &camera, const Arguments &arguments) {
        const bool close = arguments == Arguments{"close"};
        if (!arguments.empty() && !close)
            return wrong;
        camera.faults().*what = close ? RtspFaults::Half::ThenClose : RtspFaults::Half::ThenSilent;
        return done;
    };
}

void heal(Camera &camera)
{
    RtspFaults &faults = camera.faults();
    faults.frozen = false;
    faults.garbage = false;
    faults.hugeDescription = false;
    faults.halfAnswer = RtspFaults::Half::No;
    faults.halfPacket = RtspFaults::Half::No;
    faults.lossPercent = 0;
    faults.slowMs = 0;
    camera.forms().setFault(CommandForms::Fault::None);
    camera.setClockSkew(0);
    camera.account().unlock();
    camera.setPower(true);
}

const std::map<std::string, Command> &commands()
{
    static const std::map<std::string, Command> table{
        {"password",
         {"TEXT: new requests need this password",
          [](Camera &camera, const Arguments &arguments) {
              if (arguments.size() != 1)
                  return wrong;
              camera.setPassword(arguments[0]);
              return done;
          }}},
        {"drop",
         {": closes all RTSP connections now", plain([](Camera &camera) { camera.drop(); })}},
        {"freeze", {": keeps the connections open and sends nothing", plain([](Camera &camera) {
                        camera.faults().frozen = true;
                    })}},
        {"thaw", {": ends freeze", plain([](Camera &camera) { camera.faults().frozen = false; })}},
        {"half-answer",
         {"[close]: the next RTSP answer stops in the middle of a word",
          half(&RtspFaults::halfAnswer)}},
        {"half-packet",
         {"[close]: the next interleaved packet stops in its middle",
          half(&RtspFaults::halfPacket)}},
        {"unlock", {": the account may log in again", plain([](Camera &camera) {
                        camera.account().unlock();
                    })}},
        {"garbage",
         {"[on|off]: random bytes in place of picture and sound",
          withSwitch([](Camera &camera, bool on) { camera.faults().garbage = on; })}},
        {"slow",
         {"MS: all RTSP data comes later by so much",
          withNumber<int>(0, 600'000,
                          [](Camera &camera, int ms) { camera.faults().slowMs = ms; })}},
        {"loss",
         {"PERCENT: of the interleaved packets are lost",
          withNumber<int>(
              0, 100, [](Camera &camera, int percent) { camera.faults().lossPercent = percent; })}},
        {"huge-sdp",
         {"[on|off]: descriptions of more than a megabyte",
          withSwitch([](Camera &camera, bool on) { camera.faults().hugeDescription = on; })}},
        {"no-video",
         {"[on|off]: descriptions without video; drops the connections",
          withSwitch([](Camera &camera, bool on) { camera.setVideo(!on); })}},
        {"key-interval",
         {"SECONDS: distance of key frames",
          withNumber<double>(
              0.01, 3600, [](Camera &camera, double seconds) { camera.setKeyInterval(seconds); })}},
        {"key-frame", {"[main|sub]: the next frame is a key frame", keyFrame}},
        {"resize", {"WxH [main|sub]: new size in the middle of the stream", resize}},
        {"address",
         {"IP: moves to another address of this machine",
          [](Camera &camera, const Arguments &arguments) {
              return arguments.size() == 1 && camera.moveTo(arguments[0]) ? done : wrong;
          }}},
        {"clock-skew",
         {"SECONDS: the camera's clock is wrong by so much",
          withNumber<int>(-1'000'000'000, 1'000'000'000,
                          [](Camera &camera, int seconds) { camera.setClockSkew(seconds); })}},
        {"refuse",
         {": closes the RTSP and HTTP ports for new connections",
          plain([](Camera &camera) { camera.setListening(false); })}},
        {"listen", {": ends refuse", plain([](Camera &camera) { camera.setListening(true); })}},
        {"power",
         {"[on|off]: off takes ports, connections and discovery away",
          withSwitch([](Camera &camera, bool on) { camera.setPower(on); })}},
        {"reboot", {": goes down and comes back", plain([](Camera &camera) { camera.reboot(); })}},
        {"command-fail",
         {"[on|off]: command requests fail", commandFault(CommandForms::Fault::Fail)}},
        {"command-garbage",
         {"[on|off]: command requests are answered with random bytes",
          commandFault(CommandForms::Fault::Garbage)}},
        {"command-silent",
         {"[on|off]: command requests are never answered",
          commandFault(CommandForms::Fault::Silent)}},
        {"heal", {": ends all faults but a changed password, size or address", plain(heal)}},
        {"status",
         {": a line of JSON; the longest time between two frames since the last one",
          [](Camera &camera, const Arguments &) -> std::optional<std::string> {
              return camera.status();
          }}},
    };
    return table;
}

std::string helpText()
{
    std::string text = "OK commands:";
    for (const auto &[name, command] : commands())
        text += " | " + name + " " + command.usage;
    return text;
}

std::vector<Camera *> select(const Cameras &cameras, const std::string &which)
{
    std::vector<Camera *> result;
    if (which == "all") {
        for (const auto &camera : cameras)
            result.push_back(camera.get());
    } else if (const auto index = number<std::size_t>({which}, 0, cameras.size()); index) {
        if (*index < cameras.size())
            result.push_back(cameras[*index].get());
    }
    return result;
}

} // namespace

std::string runControlLine(const Cameras &cameras, const std::string &line)
{
    std::istringstream words(line);
    std::string which;
    std::string name;
    words >> which >> name;
    if (which == "help")
        return helpText();
    Arguments arguments;
    for (std::string word; words >> word;)
        arguments.push_back(word);
    const auto command = commands().find(name);
    if (command == commands().end())
        return "ERR unknown command " + name;
    const std::vector<Camera *> selected = select(cameras, which);
    if (selected.empty())
        return "ERR no camera " + which;
    std::string answer = "OK";
    for (Camera *camera : selected) {
        const std::optional<std::string> result = command->second.run(*camera, arguments);
        if (!result)
            return "ERR usage: " + name + " " + command->second.usage;
        if (!result->empty())
            answer += " " + *result;
    }
    return answer;
}

} // namespace camsim
