#include "platform/rtsp/depacketizer.h"

#include "platform/rtsp/aac_depacketizer.h"
#include "platform/rtsp/audio_depacketizer.h"
#include "platform/rtsp/h264_depacketizer.h"
#include "platform/rtsp/h265_depacketizer.h"
#include "platform/rtsp/jpeg_depacketizer.h"
#include "platform/rtsp/latm_depacketizer.h"
#include "platform/rtsp/payload_kinds.h"

#include <string>

namespace rtsp {

namespace {

constexpr int maxAudioRate = 192000; ///< samples a second
constexpr int maxAudioChannels = 8;

/// Whether NAL units come in another order than that of decoding (RFC 6184 5.7.3, 8.1), which no
/// camera has been seen to do. Mode 2 without a depth is in order.
bool isInterleaved(const PayloadFormat &format)
{
    constexpr int interleavedMode = 2;
    return format.number("packetization-mode") == interleavedMode &&
           format.number("sprop-interleaving-depth").value_or(0) > 0;
}

class NoClient : public Depacketizer::Client
{
public:
    void onFrame(VideoFrame) override {}
    void onPiece(AudioPiece) override {}
    void onDamaged() override {}
    void onReferenceLost() override {}
};

} // namespace

bool canDepacketize(const MediaDescription &media, const PayloadFormat &format)
{
    NoClient client;
    return makeDepacketizer(media, format, client) != nullptr;
}

std::shared_ptr<const base::AudioFormat> describedSound(const MediaDescription &media,
                                                        const PayloadFormat &format)
{
    NoClient client;
    const std::unique_ptr<Depacketizer> made = makeDepacketizer(media, format, client);
    return made ? made->soundFormat() : nullptr;
}

std::unique_ptr<Depacketizer> makeDepacketizer(const MediaDescription &media,
                                               const PayloadFormat &format,
                                               Depacketizer::Client &client)
{
    const std::optional<PayloadKind> kind = payloadKindOf(media.kind, format);
    if (!kind || (media.kind == MediaKind::Audio && (clockRateOf(*kind, format) > maxAudioRate ||
                                                     format.channels > maxAudioChannels)))
        return nullptr;
    switch (*kind) {
    case PayloadKind::H264: {
        if (isInterleaved(format))
            return nullptr;
        const std::string *sets = format.parameter("sprop-parameter-sets");
        return std::make_unique<H264Depacketizer>(client, sets ? *sets : std::string());
    }
    case PayloadKind::H265:
        return std::make_unique<H265Depacketizer>(client, format);
    case PayloadKind::Jpeg:
        return std::make_unique<JpegDepacketizer>(client, media.width, media.height);
    case PayloadKind::AacGeneric:
        return AacDepacketizer::create(client, format);
    case PayloadKind::AacLatm:
        return LatmDepacketizer::create(client, format);
    default:
        return std::make_unique<AudioDepacketizer>(client, *kind, format);
    }
}

} // namespace rtsp
