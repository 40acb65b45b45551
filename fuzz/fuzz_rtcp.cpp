#include "fuzz/expect.h"
#include "platform/rtsp/rtcp.h"
#include "platform/rtsp/rtp_packet.h"

#include <cstdint>
#include <vector>

// RTCP, and as RTP too.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::vector<std::uint8_t> bytes(data, data + size);
    const rtsp::RtcpNews news = rtsp::parseRtcp(bytes);
    FUZZ_EXPECT(news.goodbyes.size() <= size / 4);
    FUZZ_EXPECT(!news.report || size >= 28);
    if (const auto packet = rtsp::parseRtpPacket(bytes)) {
        FUZZ_EXPECT(packet->payload.size() + 12 <= size);
        FUZZ_EXPECT(packet->payload.empty() ||
                    packet->payload.data() + packet->payload.size() <= bytes.data() + size);
    }
    // What is made can be read.
    const rtsp::RtcpNews own = rtsp::parseRtcp(rtsp::makeReceiverReport(
        1, {reinterpret_cast<const char *>(data), size}, rtsp::ReportBlock()));
    FUZZ_EXPECT(!own.report && own.goodbyes.empty());
    return 0;
}
