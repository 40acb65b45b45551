#include "platform/rtsp/rtp_packet.h"
#include "tests/platform/rtsp/support/rtp_stream.h"

#include <gtest/gtest.h>

namespace rtsp {

TEST(RtpPacket, ReadsTheHeader)
{
    const Bytes bytes = bytesOf("80e012345678abcd00000001aabbcc");
    const std::optional<RtpPacket> packet = parseRtpPacket(bytes);
    ASSERT_TRUE(packet);
    EXPECT_TRUE(packet->marker);
    EXPECT_EQ(packet->payloadType, 96);
    EXPECT_EQ(packet->number, 0x1234);
    EXPECT_EQ(packet->time, 0x5678abcdu);
    EXPECT_EQ(packet->source, 1u);
    EXPECT_EQ(packet->payload.data(), bytes.data() + 12);
    EXPECT_EQ(packet->payload.size(), 3u);
}

TEST(RtpPacket, SkipsContributorsExtensionAndPadding)
{
    const Bytes bytes = bytesOf("b260000100000002000000030000000400000005"
                                "bede000211223344aabbccdd"
                                "7788"
                                "000003");
    const std::optional<RtpPacket> packet = parseRtpPacket(bytes);
    ASSERT_TRUE(packet);
    EXPECT_EQ(Bytes(packet->payload.begin(), packet->payload.end()), bytesOf("7788"));
}

TEST(RtpPacket, APaddingThatCannotBeIsNone)
{
    const std::optional<RtpPacket> packet =
        parseRtpPacket(bytesOf("a060000100000002000000031122ff"));
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->payload.size(), 3u);
}

TEST(RtpPacket, RefusesWhatIsNone)
{
    for (const char *hex : {"", "80", "806000010000000200000", // short
                            "406000010000000200000003",        // version 1
                            "816000010000000200000003",        // contributor missing
                            "906000010000000200000003",        // extension missing
                            "906000010000000200000003bede0001"})
        EXPECT_FALSE(parseRtpPacket(bytesOf(hex))) << hex;
}

TEST(RtpPacket, TellsRtcpApart)
{
    EXPECT_TRUE(isRtcpPacket(bytesOf("80c80006")));
    EXPECT_TRUE(isRtcpPacket(bytesOf("81cb0001")));
    EXPECT_FALSE(isRtcpPacket(bytesOf("80e00001")));
    EXPECT_FALSE(isRtcpPacket(bytesOf("80600001")));
    EXPECT_FALSE(isRtcpPacket(bytesOf("80c8")));
}

} // namespace rtsp
