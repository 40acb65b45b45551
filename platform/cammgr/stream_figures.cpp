#include "platform/cammgr/stream_figures.h"

#include "platform/cammgr/reason.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace cammgr {
namespace {

const char *nameOf(base::VideoCodec codec)
{
    switch (codec) {
    case base::VideoCodec::H264:
        return "H264";
    case base::VideoCodec::H265:
        return "H265";
    case base::VideoCodec::Jpeg:
        break;
    }
    return "JPEG";
}

const char *nameOf(base::AudioCodec codec)
{
    switch (codec) {
    case base::AudioCodec::Pcmu:
        return "PCMU";
    case base::AudioCodec::Pcma:
        return "PCMA";
    case base::AudioCodec::G726:
        return "G726";
    case base::AudioCodec::L16:
        return "L16";
    case base::AudioCodec::Aac:
        return "AAC";
    case base::AudioCodec::Opus:
        break;
    }
    return "OPUS";
}

template <class Unit>
int32_t cut(std::chrono::nanoseconds time)
{
    const auto count = std::chrono::duration_cast<Unit>(time).count();
    return static_cast<int32_t>(
        std::clamp<decltype(count)>(count, 0, std::numeric_limits<int32_t>::max()));
}

template <size_t Size>
void copy(const std::string &text, char (&room)[Size])
{
    copyCut(text, room, Size);
}

} // namespace

bool StreamFigures::write(RtspPlayerFigures &out) const
{
    if (out.size < static_cast<int32_t>(sizeof(RtspPlayerFigures)))
        return false;
    RtspPlayerFigures figures = {};
    figures.size = out.size;
    if (format) {
        figures.width = format->width;
        figures.height = format->height;
        copy(nameOf(format->codec), figures.codec);
    }
    if (sound)
        copy(nameOf(sound->codec), figures.sound_codec);
    copy(view.decoder, figures.decoder);
    copy(transport, figures.transport);
    figures.bit_rate = bitRate;
    figures.jitter = cut<std::chrono::microseconds>(video.jitter);
    figures.delay = cut<std::chrono::microseconds>(view.delay);
    figures.picture_age =
        shown ? cut<std::chrono::milliseconds>(media::SteadyClock::now() - *shown) : -1;
    figures.frames_received = static_cast<int64_t>(video.units);
    figures.frames_drawn = static_cast<int64_t>(view.drawn);
    figures.frames_dropped = static_cast<int64_t>(view.dropped + video.damaged);
    figures.packets_received = static_cast<int64_t>(video.packets);
    figures.packets_lost = static_cast<int64_t>(video.lost);
    std::memcpy(&out, &figures, sizeof figures);
    return true;
}

} // namespace cammgr
