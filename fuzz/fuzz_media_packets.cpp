#include "fuzz/expect.h"
#include "platform/rtsp/depacketizer.h"
#include "platform/rtsp/media_receiver.h"
#include "platform/rtsp/session_description.h"
#include "platform/rtsp/stream_timeline.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace {

// What the first byte chooses among.
constexpr std::array<const char *, 12> media = {
    "m=video 0 RTP/AVP 96\na=rtpmap:96 H264/90000\na=fmtp:96 "
    "sprop-parameter-sets=Z2QACqzZRHsBEAAAAwAQAAADAyDxIllg,aOvjyyLA\n",
    "m=video 0 RTP/AVP 96\na=rtpmap:96 H265/90000\na=fmtp:96 "
    "sprop-vps=QAEMAf//AWAAAAMAkAAAAwAAAwAelZAJ;"
    "sprop-sps=QgEBAWAAAAMAkAAAAwAAAwAeoCCDFllZLkyvAWgIAAADAAgAAAMAyEA=;sprop-pps=RAHBc9CJ\n",
    "m=video 0 RTP/AVP 96\na=rtpmap:96 H265/90000\na=fmtp:96 sprop-max-don-diff=1\n",
    "m=video 0 RTP/AVP 26\na=x-dimensions:2560,1440\n",
    "m=audio 0 RTP/AVP 0\n",
    "m=audio 0 RTP/AVP 96\na=rtpmap:96 AAL2-G726-24/8000\n",
    "m=audio 0 RTP/AVP 96\na=rtpmap:96 L16/8000/2\n",
    "m=audio 0 RTP/AVP 96\na=rtpmap:96 MPEG4-GENERIC/16000/1\na=fmtp:96 config=1408\n",
    "m=audio 0 RTP/AVP 96\na=rtpmap:96 MPEG4-GENERIC/16000/1\na=fmtp:96 "
    "config=1408;sizelength=6;indexlength=2;indexdeltalength=2;ctsdeltalength=5;dtsdeltalength=5;"
    "randomaccessindication=1;streamstateindication=2;auxiliarydatasizelength=8\n",
    "m=audio 0 RTP/AVP 96\na=rtpmap:96 MP4A-LATM/44100/1\na=fmtp:96 "
    "cpresent=0;config=400024103fc0\n",
    "m=audio 0 RTP/AVP 96\na=rtpmap:96 MP4A-LATM/90000\na=fmtp:96 cpresent=1\n",
    "m=audio 0 RTP/AVP 96\na=rtpmap:96 OPUS/48000/2\n"};

class CheckingSink : public rtsp::MediaSink
{
public:
    void onVideo(const base::AccessUnit &unit) override
    {
        FUZZ_EXPECT(unit.payload && unit.format && !unit.payload->empty());
        FUZZ_EXPECT(unit.size() <= 2 * rtsp::maxFrameSize);
        FUZZ_EXPECT(unit.number == ++m_number);
        if (unit.format->codec == base::VideoCodec::Jpeg)
            return;
        FUZZ_EXPECT(!unit.format->configuration.empty());
        FUZZ_EXPECT(unit.format->width > 0 && unit.format->height > 0);
        const base::Bytes &bytes = *unit.payload;
        std::size_t at = 0;
        while (at < bytes.size()) {
            FUZZ_EXPECT(bytes.size() - at > 4);
            const std::size_t length = std::size_t{bytes[at]} << 24 | bytes[at + 1] << 16 |
                                       bytes[at + 2] << 8 | bytes[at + 3];
            FUZZ_EXPECT(length > 0 && length <= bytes.size() - at - 4);
            at += 4 + length;
        }
    }
    void onAudio(const base::AudioUnit &unit) override
    {
        FUZZ_EXPECT(unit.payload && unit.format && !unit.payload->empty());
        FUZZ_EXPECT(unit.format->rate > 0 && unit.format->channels > 0);
        FUZZ_EXPECT(unit.format->codec != base::AudioCodec::Aac ||
                    !unit.format->configuration.empty());
        FUZZ_EXPECT(unit.time >= m_audioTime);
        m_audioTime = unit.time;
    }
    void onPacketsLost() override {}

private:
    std::uint64_t m_number = 0;
    std::uint64_t m_audioTime = 0;
};

} // namespace

// A byte for the medium and one for the transport, then packets, each behind
// [flags][steps of the number, the time and the arrival][size: 2 bytes].
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size < 2)
        return 0;
    const auto description =
        rtsp::parseSessionDescription(std::string("v=0\n") + media[data[0] % media.size()]);
    FUZZ_EXPECT(description && description->media.size() == 1);
    rtsp::StreamTimeline timeline;
    CheckingSink sink;
    const auto receiver =
        rtsp::MediaReceiver::create(description->media[0], timeline, sink, data[1] % 2 == 0);
    FUZZ_EXPECT(receiver != nullptr);
    const int payloadType = description->media[0].formats[0].payloadType;
    auto now = base::SteadyClock::time_point(std::chrono::hours(1));
    std::uint16_t number = 65530;
    std::uint32_t time = 0xfffff000;
    std::size_t at = 2;
    std::vector<std::uint8_t> packet;
    while (size - at >= 6) {
        const std::uint8_t flags = data[at];
        number = static_cast<std::uint16_t>(number + static_cast<std::int8_t>(data[at + 1]));
        time += static_cast<std::uint32_t>(static_cast<std::int8_t>(data[at + 2]) * 900);
        now += std::chrono::milliseconds(data[at + 3]);
        std::size_t length = std::size_t{data[at + 4]} << 8 | data[at + 5];
        at += 6;
        length = std::min(length, size - at);
        packet.assign({static_cast<std::uint8_t>(0x80 | (flags & 0x30)),
                       static_cast<std::uint8_t>((flags & 1) << 7 |
                                                 ((flags & 2) != 0 ? flags : payloadType) % 128),
                       static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number),
                       static_cast<std::uint8_t>(time >> 24), static_cast<std::uint8_t>(time >> 16),
                       static_cast<std::uint8_t>(time >> 8), static_cast<std::uint8_t>(time), 0, 0,
                       0, static_cast<std::uint8_t>(flags >> 6)});
        packet.insert(packet.end(), data + at, data + at + length);
        at += length;
        if ((flags & 4) != 0)
            receiver->takeRtcp({packet.data() + 12, packet.size() - 12}, now);
        else
            receiver->takeRtp(packet, now);
        if (const auto deadline = receiver->deadline(); deadline && (flags & 8) != 0)
            receiver->tick(*deadline);
    }
    FUZZ_EXPECT(receiver->receiverReport(now).size() % 4 == 0);
    // Nothing is held back for ever.
    for (int i = 0; i < 1000 && receiver->deadline(); ++i)
        receiver->tick(*receiver->deadline());
    FUZZ_EXPECT(!receiver->deadline());
    return 0;
}
