#include "platform/rtsp/payload_kinds.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace rtsp {

namespace {

struct Name
{
    std::string_view encoding;
    MediaKind kind;
    PayloadKind payload;
    int bits = 0; ///< a sample
};

constexpr std::array<Name, 18> names = {{
    {"H264", MediaKind::Video, PayloadKind::H264},
    {"H265", MediaKind::Video, PayloadKind::H265},
    {"HEVC", MediaKind::Video, PayloadKind::H265},
    {"JPEG", MediaKind::Video, PayloadKind::Jpeg},
    {"PCMU", MediaKind::Audio, PayloadKind::Pcmu},
    {"PCMA", MediaKind::Audio, PayloadKind::Pcma},
    {"G726-16", MediaKind::Audio, PayloadKind::G726, 2},
    {"G726-24", MediaKind::Audio, PayloadKind::G726, 3},
    {"G726-32", MediaKind::Audio, PayloadKind::G726, 4},
    {"G726-40", MediaKind::Audio, PayloadKind::G726, 5},
    {"AAL2-G726-16", MediaKind::Audio, PayloadKind::G726, 2},
    {"AAL2-G726-24", MediaKind::Audio, PayloadKind::G726, 3},
    {"AAL2-G726-32", MediaKind::Audio, PayloadKind::G726, 4},
    {"AAL2-G726-40", MediaKind::Audio, PayloadKind::G726, 5},
    {"L16", MediaKind::Audio, PayloadKind::L16},
    {"OPUS", MediaKind::Audio, PayloadKind::Opus},
    {"MPEG4-GENERIC", MediaKind::Audio, PayloadKind::AacGeneric},
    {"MP4A-LATM", MediaKind::Audio, PayloadKind::AacLatm},
}};

const Name *findName(std::string_view encoding)
{
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const Name &name) { return name.encoding == encoding; });
    return found == names.end() ? nullptr : &*found;
}

} // namespace

std::optional<PayloadKind> payloadKindOf(MediaKind kind, const PayloadFormat &format)
{
    const Name *name = findName(format.encoding);
    if (!name || name->kind != kind)
        return std::nullopt;
    return name->payload;
}

int clockRateOf(PayloadKind kind, const PayloadFormat &format)
{
    if (format.clockRate > 0)
        return format.clockRate;
    switch (kind) {
    case PayloadKind::H264:
    case PayloadKind::H265:
    case PayloadKind::Jpeg:
        return 90000;
    case PayloadKind::Opus:
        return 48000;
    default:
        return 8000;
    }
}

int bitsOfG726(const PayloadFormat &format)
{
    const Name *name = findName(format.encoding);
    return name ? name->bits : 0;
}

} // namespace rtsp
