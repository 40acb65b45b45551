#include "bench/peers.h"

namespace bench {

namespace {

std::string text(int value)
{
    return std::to_string(value);
}

Command ffmpeg(const std::string &url, const Command &output)
{
    // One thread: several only add work when there are more streams than processors.
    Command command{
        "ffmpeg", "-hide_banner",    "-nostdin", "-loglevel", "error", "-progress",
        "pipe:1", "-stats_period",   "0.5",      "-threads",  "1",     "-filter_threads",
        "1",      "-rtsp_transport", "tcp",      "-i",        url};
    command.insert(command.end(), output.begin(), output.end());
    command.insert(command.end(), {"-f", "null", "-"});
    return command;
}

} // namespace

Command enginePlayer(const std::vector<zelvaro::test::SimulatedCamera> &cameras,
                     const std::vector<Rectangle> &places)
{
    Command command{BENCH_PLAYER, cameras.at(0).user, cameras.at(0).password, "/live/1/h264.sdp"};
    for (std::size_t i = 0; i < cameras.size(); ++i) {
        const Rectangle &place = places.at(i);
        for (const std::string &word :
             {cameras[i].uid, text(place.x), text(place.y), text(place.width), text(place.height)})
            command.push_back(word);
    }
    return command;
}

Command mpv(const std::string &url, const Rectangle &place)
{
    return {"mpv",
            "--no-config",
            "--profile=low-latency",
            "--untimed",
            "--no-audio",
            "--rtsp-transport=tcp",
            "--vo=x11",
            "--no-border",
            "--no-osc",
            "--geometry=" + text(place.width) + "x" + text(place.height) + "+" + text(place.x) +
                "+" + text(place.y),
            url};
}

Command ffplay(const std::string &url, const Rectangle &place)
{
    return {
        "ffplay",    "-hide_banner",    "-an", "-fflags",          "nobuffer", "-flags",
        "low_delay", "-probesize",      "32",  "-analyzeduration", "0",        "-sync",
        "ext",       "-rtsp_transport", "tcp", "-noborder",        "-left",    text(place.x),
        "-top",      text(place.y),     "-x",  text(place.width),  "-y",       text(place.height),
        url};
}

Command ffmpegDecoder(const std::string &url)
{
    return ffmpeg(url, {});
}

Command ffmpegScaler(const std::string &url, const Rectangle &place)
{
    return ffmpeg(url, {"-vf", "scale=" + text(place.width) + ":" + text(place.height) +
                                   ":flags=bilinear,format=bgr0"});
}

} // namespace bench
