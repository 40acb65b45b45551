#include "platform/rtsp/sendable_sound.h"

#include "platform/base/text.h"
#include "platform/rtsp/aac_config.h"
#include "platform/rtsp/byte_order.h"

#include <string_view>

namespace rtsp {
namespace {

constexpr unsigned aacLowComplexity = 2; ///< audio object type
constexpr int maxChannels = 2;
constexpr int lowestRate = 8000;
constexpr int highestRate = 48'000;
constexpr int g726Rate = 8000;
constexpr int auSizeBits = 13;
constexpr int auIndexBits = 3;
constexpr std::size_t maxAacFrame = (std::size_t{1} << auSizeBits) - 1;

/// Of the payload formats that can be sent, the simplest first; 0 is none.
enum Rank
{
    NotSendable,
    G711,
    G726,
    Aac
};

bool isHbr(const PayloadFormat &format)
{
    const std::string *mode = format.parameter("mode");
    return mode && base::lowerAscii(*mode) == "aac-hbr" &&
           format.number("sizelength").value_or(auSizeBits) == auSizeBits &&
           format.number("indexlength").value_or(auIndexBits) == auIndexBits;
}

/// Whether the configuration that the camera expects is that of AAC-LC with its rate.
bool isLowComplexity(const PayloadFormat &format)
{
    const std::string *text = format.parameter("config");
    if (!text)
        return true;
    const std::optional<AacConfig> config = parseAacConfig(decodeHex(*text));
    return config && config->objectType == aacLowComplexity && config->rate == format.clockRate &&
           config->frameSamples == 1024 && config->channels == format.channels;
}

Rank rankOf(const PayloadFormat &format)
{
    const std::string_view encoding = format.encoding;
    const bool isUsual = format.clockRate >= lowestRate && format.clockRate <= highestRate &&
                         format.channels >= 1 && format.channels <= maxChannels;
    if (!isUsual)
        return NotSendable;
    if (encoding == "PCMU" || encoding == "PCMA")
        return G711;
    const std::string_view plain = encoding.substr(encoding.starts_with("AAL2-") ? 5 : 0);
    if (plain == "G726-16" || plain == "G726-24" || plain == "G726-32" || plain == "G726-40")
        return format.clockRate == g726Rate && format.channels == 1 ? G726 : NotSendable;
    if (encoding == "MPEG4-GENERIC" && isHbr(format) && isLowComplexity(format))
        return Aac;
    return NotSendable;
}

} // namespace

std::optional<SendableSound> chooseSendable(const SessionDescription &description)
{
    std::optional<SendableSound> best;
    Rank bestRank = NotSendable;
    for (const MediaDescription &media : description.media) {
        if (!media.backChannel)
            continue;
        for (const PayloadFormat &format : media.formats) {
            const Rank rank = rankOf(format);
            if (rank == NotSendable || (best && rank >= bestRank))
                continue;
            best = {&media, &format};
            bestRank = rank;
        }
    }
    return best;
}

base::Bytes payloadOf(const PayloadFormat &format, std::span<const uint8_t> sound)
{
    base::Bytes payload;
    if (format.encoding == "MPEG4-GENERIC") {
        if (sound.size() > maxAacFrame)
            return payload;
        append(payload, auSizeBits + auIndexBits, 2);
        append(payload, sound.size() << auIndexBits, 2);
    }
    append(payload, sound);
    return payload;
}

} // namespace rtsp
