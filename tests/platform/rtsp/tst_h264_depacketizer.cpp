#include "platform/rtsp/h264_depacketizer.h"
#include "tests/platform/rtsp/support/h264_nals.h"

#include <gtest/gtest.h>

namespace rtsp {

namespace {

constexpr uint32_t frameTicks = 3600;

class H264DepacketizerTest : public testing::Test
{
protected:
    /// Takes a packet of the frame at hand.
    void take(const Bytes &payload, bool marker = false, bool afterGap = false)
    {
        m_depacketizer.take({payload, m_time, marker, afterGap, at(m_now++)});
    }
    void nextFrame() { m_time += frameTicks; }
    void takeSets() { take(stapA({h264Sps, h264Pps})); }
    /// A stream whose markers have proved to be right.
    void takeProof()
    {
        for (int i = 0; i < 3; ++i) {
            takeSets();
            take(idrSlice(), true);
            nextFrame();
            take(pSlice(), true);
            nextFrame();
        }
        takeSets();
        take(idrSlice(), true);
        nextFrame();
        m_client.frames.clear();
    }
    Bytes payloadOf(std::size_t index) const { return m_client.frames.at(index).payload; }

    RecordingClient m_client;
    H264Depacketizer m_depacketizer{m_client, ""};
    uint32_t m_time = 90000;
    int64_t m_now = 0;
};

} // namespace

TEST_F(H264DepacketizerTest, DeliversAFrameAtAMarkerThatHasProved)
{
    takeProof();
    take(pSlice(), true);
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({pSlice()}));
    EXPECT_FALSE(m_client.frames[0].key);
    EXPECT_TRUE(m_client.frames[0].reference);
    EXPECT_FALSE(m_client.frames[0].bipredictive);
    EXPECT_FALSE(m_depacketizer.deadline());
}

TEST_F(H264DepacketizerTest, WaitsAMomentBehindTheFirstMarkers)
{
    takeSets();
    take(idrSlice(), true);
    EXPECT_TRUE(m_client.frames.empty());
    ASSERT_TRUE(m_depacketizer.deadline());
    m_depacketizer.tick(*m_depacketizer.deadline() - std::chrono::microseconds(1));
    EXPECT_TRUE(m_client.frames.empty());
    m_depacketizer.tick(*m_depacketizer.deadline());
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_TRUE(m_client.frames[0].key);
    EXPECT_EQ(m_client.frames[0].time, m_time);
    ASSERT_TRUE(m_client.frames[0].format);
    EXPECT_EQ(m_client.frames[0].format->width, 64);
    EXPECT_EQ(m_client.frames[0].format->height, 48);
}

TEST_F(H264DepacketizerTest, MakesTheConfigurationOfTheSets)
{
    takeSets();
    take(idrSlice());
    nextFrame();
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 1u);
    const Bytes expected = joined({bytesOf("0164000affe1"),
                                   {0, static_cast<uint8_t>(h264Sps.size())},
                                   h264Sps,
                                   {1, 0, static_cast<uint8_t>(h264Pps.size())},
                                   h264Pps,
                                   bytesOf("fdf8f800")});
    EXPECT_EQ(m_client.frames[0].format->configuration, expected);
}

TEST_F(H264DepacketizerTest, KeepsTheFormatWhileNothingChanges)
{
    takeProof();
    take(pSlice(), true);
    nextFrame();
    takeSets();
    take(idrSlice(), true);
    nextFrame();
    take(stapA({h264InterlacedSps, h264InterlacedPps}));
    take(idrSlice(), true);
    ASSERT_EQ(m_client.frames.size(), 3u);
    EXPECT_EQ(m_client.frames[0].format, m_client.frames[1].format);
    EXPECT_NE(m_client.frames[1].format, m_client.frames[2].format);
    EXPECT_NE(m_client.frames[1].format->configuration, m_client.frames[2].format->configuration);
}

TEST_F(H264DepacketizerTest, UnpacksFragments)
{
    takeProof();
    const Bytes slice = idrSlice(0, 300);
    takeSets();
    const std::vector<Bytes> fragments = fragmentsA(slice, 100);
    ASSERT_EQ(fragments.size(), 4u);
    for (const Bytes &fragment : fragments)
        take(fragment, &fragment == &fragments.back());
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({slice}));
    EXPECT_TRUE(m_client.frames[0].key);
}

TEST_F(H264DepacketizerTest, UnpacksFragmentsWhoseLastIsNotMarkedAsSuch)
{
    takeProof();
    std::vector<Bytes> fragments = fragmentsA(pSlice(), 30);
    fragments.back()[1] &= 0xbf;
    for (const Bytes &fragment : fragments)
        take(fragment);
    nextFrame();
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({pSlice()}));
}

TEST_F(H264DepacketizerTest, UnpacksFragmentsWithOrder)
{
    takeProof();
    const Bytes slice = pSlice();
    Bytes first = {static_cast<uint8_t>((slice[0] & 0xe0) | 29),
                   static_cast<uint8_t>(0x80 | (slice[0] & 0x1f)), 0, 7, slice[1]};
    Bytes last = {static_cast<uint8_t>((slice[0] & 0xe0) | 28),
                  static_cast<uint8_t>(0x40 | (slice[0] & 0x1f))};
    last.insert(last.end(), slice.begin() + 2, slice.end());
    take(first);
    take(last, true);
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({slice}));
}

TEST_F(H264DepacketizerTest, UnpacksAggregates)
{
    takeProof();
    const Bytes slice = pSlice();
    const auto size = static_cast<uint8_t>(slice.size());
    take(stapA({h264Delimiter, slice}), true);
    nextFrame();
    take(joined({{0x79, 0, 1, 0, size}, slice}), true); // STAP-B
    nextFrame();
    take(joined({{0x7a, 0, 1, 0, size, 0, 0, 0}, slice}), true); // MTAP16
    nextFrame();
    take(joined({{0x7b, 0, 1, 0, size, 0, 0, 0, 0}, slice}), true); // MTAP24
    ASSERT_EQ(m_client.frames.size(), 4u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({h264Delimiter, slice}));
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_EQ(payloadOf(i), lengthPrefixed({slice})) << i;
}

TEST_F(H264DepacketizerTest, LeavesOutAnAggregateThatIsCut)
{
    takeProof();
    Bytes cut = stapA({h264Delimiter, pSlice()});
    cut.resize(cut.size() - 3);
    take(cut, true);
    nextFrame();
    take(pSlice(), true);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.referencesLost, 1);
    EXPECT_EQ(m_client.frames.size(), 1u);
}

TEST_F(H264DepacketizerTest, TakesStartCodesInsidePackets)
{
    take(withStartCodes({h264Delimiter, h264Sps, h264Pps, idrSlice()}), true);
    nextFrame();
    take(withStartCodes({pSlice(), pSlice(6)}), true);
    nextFrame();
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({h264Delimiter, idrSlice()}));
    EXPECT_TRUE(m_client.frames[0].key);
    EXPECT_EQ(payloadOf(1), lengthPrefixed({pSlice(), pSlice(6)}));
}

TEST_F(H264DepacketizerTest, TakesStartCodesInsideFragments)
{
    // The sets, a start code and the slice in one fragmented unit, with zeros before the code.
    Bytes all = joined({h264Sps, {0}, withStartCodes({h264Pps, idrSlice()})});
    for (const Bytes &fragment : fragmentsA(all, 20))
        take(fragment);
    nextFrame();
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({idrSlice()}));
}

TEST_F(H264DepacketizerTest, MarkersOnParameterSetsEndNothing)
{
    for (int i = 0; i < 6; ++i) {
        take(h264Sps, true);
        take(h264Pps, true);
        take(idrSlice(), true);
        nextFrame();
        take(pSlice(), true);
        nextFrame();
    }
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 12u);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(payloadOf(i), lengthPrefixed({i % 2 == 0 ? idrSlice() : pSlice()}));
        EXPECT_EQ(m_client.frames[i].key, i % 2 == 0);
    }
    EXPECT_EQ(m_client.referencesLost, 0);
}

TEST_F(H264DepacketizerTest, MarkersOnEachSliceEndNothing)
{
    const auto takeFrame = [this](bool key) {
        if (key)
            take(stapA({h264Sps, h264Pps}), true);
        for (unsigned i = 0; i < 3; ++i)
            take(key ? idrSlice(4 * i) : pSlice(4 * i), true);
        nextFrame();
    };
    for (int i = 0; i < 40; ++i)
        takeFrame(i % 4 == 0);
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 40u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({idrSlice(0), idrSlice(4), idrSlice(8)}));
    EXPECT_EQ(payloadOf(1), lengthPrefixed({pSlice(0), pSlice(4), pSlice(8)}));
    EXPECT_EQ(m_client.damaged, 0);
}

TEST_F(H264DepacketizerTest, WhereMarkersLieTheUsualNumberOfSlicesEndsAFrame)
{
    for (int i = 0; i < 12; ++i) {
        if (i == 0)
            takeSets();
        for (unsigned slice = 0; slice < 3; ++slice)
            take(i == 0 ? idrSlice(4 * slice) : pSlice(4 * slice), true);
        nextFrame();
    }
    // Not waited for: each frame was there with its third slice.
    ASSERT_EQ(m_client.frames.size(), 12u);
    // One with more slices is noticed, and counted anew.
    for (unsigned slice = 0; slice < 4; ++slice)
        take(pSlice(4 * slice), true);
    nextFrame();
    for (unsigned slice = 0; slice < 4; ++slice)
        take(pSlice(4 * slice), true);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.referencesLost, 1);
    nextFrame();
    take(pSlice(), true);
    EXPECT_EQ(payloadOf(m_client.frames.size() - 1),
              lengthPrefixed({pSlice(0), pSlice(4), pSlice(8), pSlice(12)}));
}

TEST_F(H264DepacketizerTest, FramesEndWithoutMarkers)
{
    takeSets();
    take(idrSlice());
    nextFrame();
    for (int i = 0; i < 10; ++i) {
        take(pSlice(0));
        take(pSlice(6));
        nextFrame();
    }
    // The first eight teach how many slices a frame has; then nothing waits for the next one.
    EXPECT_EQ(m_client.frames.size(), 11u);
    for (std::size_t i = 1; i < m_client.frames.size(); ++i)
        EXPECT_EQ(payloadOf(i), lengthPrefixed({pSlice(0), pSlice(6)}));
}

TEST_F(H264DepacketizerTest, TimesThatStandStillDoNotJoinFrames)
{
    takeSets();
    take(idrSlice());
    for (int i = 0; i < 5; ++i) {
        take(pSlice(0, static_cast<uint8_t>(0x40 + i)));
        take(pSlice(6, static_cast<uint8_t>(0x40 + i)));
    }
    takeSets();
    take(h264Delimiter);
    take(idrSlice());
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 7u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({idrSlice()}));
    for (std::size_t i = 0; i < 5; ++i) {
        const auto content = static_cast<uint8_t>(0x40 + i);
        EXPECT_EQ(payloadOf(i + 1), lengthPrefixed({pSlice(0, content), pSlice(6, content)}));
    }
    // The delimiter belongs to the picture behind it.
    EXPECT_EQ(payloadOf(6), lengthPrefixed({h264Delimiter, idrSlice()}));
}

TEST_F(H264DepacketizerTest, BothFieldsOfAFrameAreOneUnit)
{
    const auto field = [](bool bottom) {
        BitWriter writer; // frame_num of 4 bits in this set
        writer.ue(0).ue(7).ue(0).bits(0, 4).bits(1, 1).bits(bottom ? 1 : 0, 1);
        return joined({{0x65}, writer.finish(), Bytes(20, 0x33)});
    };
    take(stapA({h264InterlacedSps, h264InterlacedPps}));
    take(field(false));
    take(field(true), true);
    take(field(false));
    take(field(true), true);
    nextFrame();
    take(pSlice());
    ASSERT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(payloadOf(0), lengthPrefixed({field(false), field(true)}));
}

TEST_F(H264DepacketizerTest, SetsOfTheDescriptionAreTrimmed)
{
    const auto base64 = [](const Bytes &bytes) {
        constexpr std::string_view digits =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::string text;
        for (std::size_t i = 0; i < bytes.size(); i += 3) {
            uint32_t group = 0;
            for (std::size_t j = 0; j < 3; ++j)
                group = group << 8 | (i + j < bytes.size() ? bytes[i + j] : 0);
            for (int j = 0; j < 4; ++j)
                text += i + static_cast<std::size_t>(j) > bytes.size()
                            ? '='
                            : digits[group >> (18 - 6 * j) & 63];
        }
        return text;
    };
    const auto configurationOf = [&](const std::string &sets) {
        RecordingClient client;
        H264Depacketizer depacketizer(client, sets);
        depacketizer.take({idrSlice(), 1, true, false, at(0)});
        depacketizer.tick(at(100));
        return client.frames.empty() ? Bytes() : client.frames[0].format->configuration;
    };
    const Bytes clean = configurationOf(base64(h264Sps) + "," + base64(h264Pps));
    ASSERT_FALSE(clean.empty());
    const Bytes zeros = {0, 0, 0};
    const Bytes code = {0, 0, 0, 1};
    EXPECT_EQ(
        configurationOf(base64(joined({h264Sps, zeros})) + "," + base64(joined({h264Pps, zeros}))),
        clean);
    EXPECT_EQ(
        configurationOf(base64(joined({h264Sps, code})) + "," + base64(joined({h264Pps, code}))),
        clean);
    EXPECT_EQ(configurationOf(base64(withStartCodes({h264Sps, h264Pps}))), clean);
    EXPECT_TRUE(configurationOf("!!!,,,").empty());
}

TEST_F(H264DepacketizerTest, KeyFramesWithoutIdrPictures)
{
    const Bytes intra = h264Slice(1, {.type = 7});
    const auto isKey = [](std::initializer_list<Bytes> before, const Bytes &slice) {
        RecordingClient client;
        H264Depacketizer depacketizer(client, "");
        depacketizer.take({stapA({h264Sps, h264Pps}), 1, false, false, at(0)});
        depacketizer.take({pSlice(), 1, false, false, at(0)});
        for (const Bytes &nal : before)
            depacketizer.take({nal, 2, false, false, at(1)});
        depacketizer.take({slice, 2, false, false, at(1)});
        depacketizer.take({pSlice(), 3, false, false, at(2)});
        depacketizer.take({pSlice(), 4, false, false, at(3)});
        EXPECT_EQ(client.frames.size(), 3u);
        EXPECT_FALSE(client.frames.at(0).key);
        EXPECT_FALSE(client.frames.at(2).key);
        return client.frames.at(1).key;
    };
    EXPECT_TRUE(isKey({h264Sps, h264Pps}, intra));
    EXPECT_FALSE(isKey({}, intra));
    EXPECT_FALSE(isKey({h264Sps, h264Pps}, pSlice()));
    EXPECT_TRUE(isKey({h264RecoveryPoint}, pSlice()));
    EXPECT_TRUE(isKey({h264Sps, h264Pps}, idrSlice()));
}

TEST_F(H264DepacketizerTest, TellsFramesThatNobodyRefersTo)
{
    takeProof();
    take(bSlice(), true);
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_TRUE(m_client.frames[0].bipredictive);
    EXPECT_FALSE(m_client.frames[0].reference);
}

TEST_F(H264DepacketizerTest, LeavesOutAFrameWithAHole)
{
    takeProof();
    const std::vector<Bytes> fragments = fragmentsA(pSlice(), 10);
    take(fragments[0]);
    take(fragments[2], false, true);
    take(fragments[3], true);
    nextFrame();
    take(pSlice(), true);
    nextFrame();
    take(pSlice(), true);
    EXPECT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.referencesLost, 1);
}

TEST_F(H264DepacketizerTest, LeavesOutAFrameWithoutItsBeginning)
{
    takeProof();
    take(pSlice(6), true, true);
    nextFrame();
    take(pSlice(), true);
    EXPECT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.referencesLost, 1);
}

TEST_F(H264DepacketizerTest, LeavesOutAFrameWhoseEndMayBeMissing)
{
    takeProof();
    take(pSlice(0));
    nextFrame();
    take(pSlice(0), true, true);
    EXPECT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.referencesLost, 1);
}

TEST_F(H264DepacketizerTest, AHoleInAFrameThatNobodyRefersToHarmsNoOther)
{
    takeProof();
    const std::vector<Bytes> fragments = fragmentsA(bSlice(), 10);
    take(fragments[0]);
    take(fragments[2], false, true);
    take(fragments[3], true);
    nextFrame();
    take(pSlice(), true);
    EXPECT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.referencesLost, 0);
}

TEST_F(H264DepacketizerTest, TellsALossBetweenFrames)
{
    takeProof();
    take(pSlice(), true);
    nextFrame();
    nextFrame();
    take(pSlice(), true, true);
    EXPECT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(m_client.damaged, 0);
    EXPECT_EQ(m_client.referencesLost, 1);
}

TEST_F(H264DepacketizerTest, WhoJoinsInTheMiddleOfAFrameHasLostNothing)
{
    const std::vector<Bytes> fragments = fragmentsA(pSlice(), 10);
    take(fragments[2]);
    take(fragments[3], true);
    nextFrame();
    takeSets();
    take(idrSlice());
    nextFrame();
    take(pSlice());
    EXPECT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.damaged, 0);
    EXPECT_EQ(m_client.referencesLost, 0);
}

TEST_F(H264DepacketizerTest, GivesUpAFrameThatNeverEnds)
{
    takeProof();
    Bytes fragment = fragmentsA(pSlice(), 10)[1];
    take(fragmentsA(pSlice(), 10)[0]);
    fragment.resize(1 << 20, 0x55);
    for (int i = 0; i < 20; ++i)
        take(fragment);
    nextFrame();
    take(pSlice(), true);
    EXPECT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.damaged, 1);
}

TEST_F(H264DepacketizerTest, DeliversNothingWithoutParameterSets)
{
    take(idrSlice());
    nextFrame();
    take(idrSlice());
    nextFrame();
    EXPECT_TRUE(m_client.frames.empty());
    takeSets();
    take(idrSlice());
    nextFrame();
    take(pSlice());
    EXPECT_EQ(m_client.frames.size(), 1u);
}

} // namespace rtsp
