#include "platform/rtsp/reception_statistics.h"
#include "platform/rtsp/rtcp.h"
#include "tests/platform/rtsp/support/rtp_stream.h"

#include <gtest/gtest.h>

namespace rtsp {

namespace {

const Bytes senderReport = bytesOf("80c80006000012340102030405060708000098760000000100000002");
const Bytes goodbye = bytesOf("81cb000100001234");

RtpPacket packetOf(uint16_t number, uint32_t time = 0)
{
    RtpPacket packet;
    packet.number = number;
    packet.time = time;
    packet.source = 0x1234;
    return packet;
}

} // namespace

TEST(Rtcp, ReadsASenderReport)
{
    const RtcpNews news = parseRtcp(senderReport);
    ASSERT_TRUE(news.report);
    EXPECT_EQ(news.report->source, 0x1234u);
    EXPECT_EQ(news.report->ntpTime, 0x0102030405060708u);
    EXPECT_EQ(news.report->rtpTime, 0x9876u);
    EXPECT_TRUE(news.goodbyes.empty());
}

TEST(Rtcp, ReadsACompound)
{
    const RtcpNews news =
        parseRtcp(joined({senderReport, bytesOf("81ca0002000012340101780000"), goodbye}));
    EXPECT_TRUE(news.report);
    EXPECT_TRUE(news.goodbyes.empty()); // what is in between has another size than it says

    const RtcpNews whole =
        parseRtcp(joined({senderReport, bytesOf("81ca00020000123401017800"), goodbye}));
    EXPECT_EQ(whole.goodbyes, std::vector<uint32_t>{0x1234});
}

TEST(Rtcp, SkipsWhatIsWrong)
{
    for (const char *hex : {"", "80", "80c8ffff", "80c800010000", "80c8000100001234", "9fcb0000",
                            "00c80006", "82cb000100001234"}) {
        const RtcpNews news = parseRtcp(bytesOf(hex));
        EXPECT_FALSE(news.report) << hex;
        EXPECT_LE(news.goodbyes.size(), 1u) << hex;
    }
}

TEST(Rtcp, MakesAnEmptyReport)
{
    EXPECT_EQ(makeReceiverReport(0xaabbccdd, "cam", std::nullopt),
              bytesOf("80c90001aabbccdd"
                      "81ca0003aabbccdd010363616d000000"));
    // The name ends where a word does: a whole word of zeros ends the list.
    EXPECT_EQ(makeReceiverReport(0xaabbccdd, "camera", std::nullopt),
              bytesOf("80c90001aabbccdd"
                      "81ca0004aabbccdd010663616d65726100000000"));
}

TEST(Rtcp, MakesAReport)
{
    const ReportBlock block = {.source = 0x1234,
                               .fractionLost = 5,
                               .lost = -2,
                               .highestNumber = 0x10203,
                               .jitter = 7,
                               .lastReport = 0x03040506,
                               .delaySinceReport = 0x10000};
    const Bytes report = makeReceiverReport(1, "", block);
    EXPECT_EQ(Bytes(report.begin(), report.begin() + 32), bytesOf("81c900070000000100001234"
                                                                  "05fffffe0001020300000007"
                                                                  "0304050600010000"));
    EXPECT_EQ(report.size() % 4, 0u);
}

TEST(ReceptionStatistics, CountsLossOverAWrap)
{
    ReceptionStatistics statistics(90000);
    EXPECT_FALSE(statistics.report(at(0)));
    for (const uint16_t number : {65533, 65534, 65535, 2, 3})
        statistics.note(packetOf(number), at(0));
    std::optional<ReportBlock> block = statistics.report(at(0));
    ASSERT_TRUE(block);
    EXPECT_EQ(block->source, 0x1234u);
    EXPECT_EQ(block->highestNumber, 0x10003u);
    EXPECT_EQ(block->lost, 2);
    EXPECT_EQ(block->fractionLost, 2 * 256 / 7);
    EXPECT_EQ(block->lastReport, 0u);
    // Since the last report nothing was lost.
    statistics.note(packetOf(4), at(0));
    block = statistics.report(at(0));
    EXPECT_EQ(block->fractionLost, 0);
    EXPECT_EQ(block->lost, 2);
}

TEST(ReceptionStatistics, TellsTheDelaySinceTheSendersReport)
{
    ReceptionStatistics statistics(90000);
    statistics.note(packetOf(1), at(0));
    statistics.noteReport({0x1234, 0x0102030405060708, 0}, at(1000));
    const std::optional<ReportBlock> block = statistics.report(at(1500));
    EXPECT_EQ(block->lastReport, 0x03040506u);
    EXPECT_EQ(block->delaySinceReport, 0x8000u);
}

TEST(ReceptionStatistics, MeasuresJitterNotTheRate)
{
    ReceptionStatistics steady(90000);
    ReceptionStatistics shaken(90000);
    for (uint16_t i = 0; i < 200; ++i) {
        steady.note(packetOf(i, i * 3600u), at(40 * i));
        shaken.note(packetOf(i, i * 3600u), at(40 * i + (i % 2 == 0 ? 0 : 10)));
    }
    using std::chrono::microseconds;
    EXPECT_LT(steady.jitter(), microseconds(100));
    EXPECT_GT(shaken.jitter(), microseconds(9000));
    EXPECT_LT(shaken.jitter(), microseconds(11000));
}

} // namespace rtsp
