#include "platform/rtsp/h265_bitstream.h"
#include "platform/rtsp/h265_depacketizer.h"
#include "platform/rtsp/session_description.h"
#include "tests/platform/rtsp/support/rtp_stream.h"

#include <gtest/gtest.h>

namespace rtsp {

namespace {

// Of an encoder: Main profile, 64x48, two frames are reordered.
const Bytes vps = bytesOf("40010c01ffff01600000030090000003000003001e959009");
const Bytes sps =
    bytesOf("42010101600000030090000003000003001ea020831659592e4caf016808000003000800000300c840");
const Bytes pps = bytesOf("4401c173d089");
const Bytes prefixSei = bytesOf("4e010504aabbccdd80");
const Bytes suffixSei = bytesOf("5001840411223344");

enum class SliceKind
{
    B,
    P,
    I
};

Bytes slice(unsigned type, SliceKind kind, bool first = true, std::size_t size = 40)
{
    BitWriter writer;
    writer.bits(first ? 1 : 0, 1);
    if (type >= 16)
        writer.bits(0, 1);
    writer.ue(0);
    if (first)
        writer.ue(static_cast<unsigned>(kind));
    return joined({{static_cast<uint8_t>(type << 1), 1}, writer.finish(), Bytes(size, 0x5a)});
}

Bytes idr(bool first = true)
{
    return slice(19, SliceKind::I, first);
}

Bytes trail(bool first = true)
{
    return slice(1, SliceKind::P, first);
}

Bytes aggregate(std::initializer_list<Bytes> nals)
{
    Bytes packet = {0x60, 1};
    for (const Bytes &nal : nals) {
        append(packet, nal.size(), 2);
        append(packet, nal);
    }
    return packet;
}

class H265DepacketizerTest : public testing::Test
{
protected:
    void take(const Bytes &payload, bool marker = false, bool afterGap = false)
    {
        m_depacketizer.take({payload, m_time, marker, afterGap, at(m_now++)});
    }
    /// Also ends the frame at hand.
    void nextFrame()
    {
        m_time += 3600;
        m_now += 40;
        m_depacketizer.tick(at(m_now));
    }
    void takeSets() { take(aggregate({vps, sps, pps})); }
    void takeFragments(const Bytes &nal, std::size_t size, bool order = false)
    {
        for (std::size_t from = 2; from < nal.size(); from += size) {
            const std::size_t to = std::min(nal.size(), from + size);
            Bytes fragment = {static_cast<uint8_t>((nal[0] & 0x81) | 49 << 1), nal[1],
                              static_cast<uint8_t>((from == 2 ? 0x80 : 0) |
                                                   (to == nal.size() ? 0x40 : 0) | nal[0] >> 1)};
            if (order && from == 2)
                append(fragment, 9, 2);
            fragment.insert(fragment.end(), nal.begin() + static_cast<std::ptrdiff_t>(from),
                            nal.begin() + static_cast<std::ptrdiff_t>(to));
            take(fragment, to == nal.size());
        }
    }

    RecordingClient m_client;
    H265Depacketizer m_depacketizer{m_client, PayloadFormat()};
    uint32_t m_time = 0;
    int64_t m_now = 0;
};

} // namespace

TEST_F(H265DepacketizerTest, DeliversFrames)
{
    takeSets();
    take(prefixSei);
    take(idr());
    take(suffixSei, true);
    nextFrame();
    take(trail(), true);
    nextFrame();
    ASSERT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(m_client.frames[0].payload, lengthPrefixed({prefixSei, idr(), suffixSei}));
    EXPECT_TRUE(m_client.frames[0].key);
    EXPECT_EQ(m_client.frames[1].payload, lengthPrefixed({trail()}));
    EXPECT_FALSE(m_client.frames[1].key);
    EXPECT_TRUE(m_client.frames[1].reference);
    EXPECT_FALSE(m_client.frames[1].bipredictive);
    EXPECT_EQ(m_client.frames[0].format, m_client.frames[1].format);
}

TEST_F(H265DepacketizerTest, MakesTheConfigurationOfTheSets)
{
    takeSets();
    take(idr(), true);
    nextFrame();
    ASSERT_EQ(m_client.frames.size(), 1u);
    const base::VideoFormat &format = *m_client.frames[0].format;
    EXPECT_EQ(format.codec, base::VideoCodec::H265);
    EXPECT_EQ(format.width, 64);
    EXPECT_EQ(format.height, 48);
    const auto array = [](uint8_t type, const Bytes &nal) {
        return joined({{type, 0, 1, 0, static_cast<uint8_t>(nal.size())}, nal});
    };
    EXPECT_EQ(format.configuration, joined({bytesOf("010160000000900000000000"
                                                    "1ef000fcfdf8f800000f03"),
                                            array(0xa0, vps), array(0xa1, sps), array(0xa2, pps)}));
}

TEST_F(H265DepacketizerTest, TakesTheSetsOfTheDescription)
{
    PayloadFormat format;
    format.parameters = {{"sprop-vps", "QAEMAf//AWAAAAMAkAAAAwAAAwAelZAJAAAAAQ=="},
                         {"sprop-sps", "QgEBAWAAAAMAkAAAAwAAAwAeoCCDFllZLkyvAWgIAAADAAgAAAMAyEA="},
                         {"sprop-pps", "RAHBc9CJ"}};
    RecordingClient client;
    H265Depacketizer depacketizer(client, format);
    depacketizer.take({idr(), 1, true, false, at(0)});
    depacketizer.tick(at(100));
    takeSets();
    take(idr(), true);
    nextFrame();
    ASSERT_EQ(client.frames.size(), 1u);
    EXPECT_EQ(*client.frames[0].format, *m_client.frames[0].format);
}

TEST_F(H265DepacketizerTest, UnpacksFragmentsAndAggregates)
{
    takeSets();
    takeFragments(idr(), 15);
    nextFrame();
    take(aggregate({trail(), trail(false)}), true);
    nextFrame();
    ASSERT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(m_client.frames[0].payload, lengthPrefixed({idr()}));
    EXPECT_EQ(m_client.frames[1].payload, lengthPrefixed({trail(), trail(false)}));
}

TEST_F(H265DepacketizerTest, SkipsDecodingOrderNumbers)
{
    PayloadFormat format;
    format.parameters = {{"sprop-max-don-diff", "2"}};
    H265Depacketizer depacketizer(m_client, format);
    const auto takeOrdered = [&](const Bytes &payload, uint32_t time, bool marker) {
        depacketizer.take({payload, time, marker, false, at(time)});
        depacketizer.tick(at(time + 30));
    };
    const auto sized = [](const Bytes &nal) {
        return joined({{0, static_cast<uint8_t>(nal.size())}, nal});
    };
    takeOrdered(joined({{0x60, 1, 0, 1}, sized(vps), {0}, sized(sps), {0}, sized(pps)}), 0, false);
    const Bytes key = idr();
    takeOrdered(joined({{key[0], key[1], 0, 2}, Bytes(key.begin() + 2, key.end())}), 0, true);
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.frames[0].payload, lengthPrefixed({key}));
    const Bytes next = trail();
    Bytes first = {0x62, 1, 0x81, 0, 3};
    first.insert(first.end(), next.begin() + 2, next.begin() + 10);
    Bytes last = {0x62, 1, 0x41};
    last.insert(last.end(), next.begin() + 10, next.end());
    takeOrdered(first, 40, false);
    takeOrdered(last, 40, true);
    ASSERT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(m_client.frames[1].payload, lengthPrefixed({next}));
}

TEST_F(H265DepacketizerTest, RandomAccessPicturesAreKeyFrames)
{
    takeSets();
    for (unsigned type = 0; type <= 23; ++type) {
        take(slice(type, SliceKind::I), true);
        nextFrame();
    }
    ASSERT_EQ(m_client.frames.size(), 24u);
    EXPECT_TRUE(m_client.frames[0].key); // intra, behind a sequence parameter set
    for (unsigned type = 1; type <= 23; ++type) {
        EXPECT_EQ(m_client.frames[type].key, type >= 16 && type <= 21) << type;
        EXPECT_EQ(m_client.frames[type].reference, type % 2 == 1 || type > 15) << type;
    }
}

TEST_F(H265DepacketizerTest, TellsWhereOrderChanges)
{
    takeSets();
    take(slice(0, SliceKind::B), true);
    nextFrame();
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_TRUE(m_client.frames[0].bipredictive);
    EXPECT_FALSE(m_client.frames[0].reference);
}

TEST_F(H265DepacketizerTest, FramesEndWhereAnotherPictureBegins)
{
    takeSets();
    take(idr(), true);
    take(idr(false), true); // the marker lies
    take(trail(), true);
    take(trail(false), true);
    take(trail(), true);
    nextFrame();
    take(trail(), true);
    ASSERT_EQ(m_client.frames.size(), 3u);
    EXPECT_EQ(m_client.frames[0].payload, lengthPrefixed({idr(), idr(false)}));
    EXPECT_EQ(m_client.frames[1].payload, lengthPrefixed({trail(), trail(false)}));
}

TEST_F(H265DepacketizerTest, OtherLayersAreLeftOut)
{
    takeSets();
    take(idr());
    Bytes other = trail();
    other[1] = 1 << 3 | 1;
    take(other, true);
    nextFrame();
    ASSERT_EQ(m_client.frames.size(), 1u);
    EXPECT_EQ(m_client.frames[0].payload, lengthPrefixed({idr()}));
}

TEST_F(H265DepacketizerTest, LeavesOutAFrameWithAHole)
{
    takeSets();
    take(idr(), true);
    nextFrame();
    take(trail());
    take(trail(false), true, true);
    nextFrame();
    take(trail(), true);
    nextFrame();
    EXPECT_EQ(m_client.frames.size(), 2u);
    EXPECT_EQ(m_client.damaged, 1);
    EXPECT_EQ(m_client.referencesLost, 1);
}

TEST_F(H265DepacketizerTest, SkipsWhatIsTooShort)
{
    for (const char *hex : {"", "62", "6201", "620180", "6001", "600100", "60010009", "26", "2601"})
        take(bytesOf(hex), true);
    nextFrame();
    EXPECT_TRUE(m_client.frames.empty());
    EXPECT_FALSE(parseH265Sps(std::span(sps).first(12)));
    EXPECT_FALSE(parseH265Pps(std::span(pps).first(2)));
}

} // namespace rtsp
