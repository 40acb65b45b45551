#include "platform/rtsp/h264_bitstream.h"
#include "tests/platform/rtsp/support/h264_nals.h"

#include <gtest/gtest.h>

namespace rtsp {

TEST(H264Bitstream, ReadsASequenceParameterSet)
{
    const std::optional<H264Sps> sps = parseH264Sps(h264Sps);
    ASSERT_TRUE(sps);
    EXPECT_EQ(sps->id, 0u);
    EXPECT_EQ(sps->profile, 100);
    EXPECT_EQ(sps->level, 10);
    EXPECT_EQ(sps->width, 64);
    EXPECT_EQ(sps->height, 48);
    EXPECT_EQ(sps->chromaFormat, 1u);
    EXPECT_TRUE(sps->framesOnly);
    EXPECT_EQ(sps->orderCountType, 0u);
    const std::optional<H264Sps> interlaced = parseH264Sps(h264InterlacedSps);
    ASSERT_TRUE(interlaced);
    EXPECT_FALSE(interlaced->framesOnly);
    EXPECT_EQ(interlaced->height, 48);
}

TEST(H264Bitstream, CropsTheSize)
{
    // Baseline, 1920 x 1088, of which 8 rows are cut off
    BitWriter writer;
    writer.bits(66, 8).bits(0, 8).bits(40, 8).ue(3).ue(0).ue(2).ue(1).bits(0, 1);
    writer.ue(119).ue(67).bits(1, 1).bits(1, 1).bits(1, 1).ue(0).ue(0).ue(0).ue(4).bits(0, 1);
    const std::optional<H264Sps> sps = parseH264Sps(joined({{0x67}, writer.finish()}));
    ASSERT_TRUE(sps);
    EXPECT_EQ(sps->id, 3u);
    EXPECT_EQ(sps->width, 1920);
    EXPECT_EQ(sps->height, 1080);
    EXPECT_EQ(sps->orderCountType, 2u);
}

TEST(H264Bitstream, RefusesWrongSets)
{
    EXPECT_FALSE(parseH264Sps({}));
    EXPECT_FALSE(parseH264Sps(h264Pps));
    EXPECT_FALSE(parseH264Pps(h264Sps));
    EXPECT_FALSE(parseH264Pps(Bytes{0x68}));
    for (std::size_t size = 0; size < 8; ++size)
        EXPECT_FALSE(parseH264Sps(std::span(h264Sps).first(size))) << size;
    // An enormous picture
    BitWriter writer;
    writer.bits(66, 8).bits(0, 8).bits(40, 8).ue(0).ue(0).ue(2).ue(1).bits(0, 1);
    writer.ue(0xfffffff).ue(67).bits(1, 1).bits(1, 1).bits(0, 2);
    EXPECT_FALSE(parseH264Sps(joined({{0x67}, writer.finish()})));
}

TEST(H264Bitstream, FindsRecoveryPoints)
{
    EXPECT_EQ(findRecoveryPoint(h264RecoveryPoint), 0u);
    // Behind another message of 300 bytes
    Bytes sei = {0x06, 0x05, 0xff, 0x2d};
    sei.insert(sei.end(), 300, 0x41);
    append(sei, bytesOf("0601264080"));
    EXPECT_EQ(findRecoveryPoint(sei), 3u);
    EXPECT_FALSE(findRecoveryPoint(Bytes{0x06, 0x05, 0x01, 0x00, 0x80}));
    EXPECT_FALSE(findRecoveryPoint(Bytes{0x06, 0xff, 0xff}));
    EXPECT_FALSE(findRecoveryPoint(h264Sps));
}

TEST(SliceFacts, TellWhatAnAccessUnitIs)
{
    const auto factsOf = [](const Bytes &nal) { return readSliceFacts(lengthPrefixed({nal})); };
    EXPECT_TRUE(factsOf(bSlice()).bipredictive);
    EXPECT_FALSE(factsOf(bSlice()).reference);
    EXPECT_FALSE(factsOf(pSlice()).bipredictive);
    EXPECT_TRUE(factsOf(pSlice()).reference);
    EXPECT_FALSE(factsOf(idrSlice()).bipredictive);
    EXPECT_TRUE(factsOf(idrSlice()).reference);
    EXPECT_TRUE(factsOf({0x65}).reference);
    EXPECT_TRUE(readSliceFacts(lengthPrefixed({h264Delimiter, pSlice(), bSlice()})).bipredictive);
}

TEST(SliceFacts, DamagedUnitsGiveWhatIsReadable)
{
    EXPECT_FALSE(readSliceFacts(bytesOf("000000ff65888040")).reference);
    const Bytes none = {0, 0, 0, 0, 0};
    for (std::size_t size = 0; size <= none.size(); ++size)
        EXPECT_FALSE(readSliceFacts(std::span(none).first(size)).reference);
    EXPECT_TRUE(readSliceFacts(bytesOf("0265880000"), 1).reference);
    EXPECT_TRUE(readSliceFacts(joined({lengthPrefixed({pSlice()}), {0, 0, 9, 9, 9}})).reference);
}

} // namespace rtsp
