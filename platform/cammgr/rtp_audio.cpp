#include "platform/cammgr/rtp_audio.h"

#include <algorithm>
#include <iterator>
#include <strings.h>

namespace cammgr {

namespace {

constexpr RtpAudio kinds[] = {
    {"PCMU", "rtppcmudepay"},
    {"PCMA", "rtppcmadepay"},
    {"MPEG4-GENERIC", "rtpmp4gdepay"},
    {"MP4A-LATM", "rtpmp4adepay"},
};

} // namespace

const RtpAudio *findRtpAudio(const char *encoding)
{
    if (!encoding)
        return nullptr;
    const auto *found = std::find_if(std::begin(kinds), std::end(kinds), [&](const RtpAudio &kind) {
        return strcasecmp(kind.encoding, encoding) == 0;
    });
    return found == std::end(kinds) ? nullptr : found;
}

} // namespace cammgr
