#include "platform/rtsp/media_receiver.h"
#include "platform/rtsp/session_description.h"
#include "platform/rtsp/stream_timeline.h"
#include "tests/platform/rtsp/support/h264_nals.h"

#include <gtest/gtest.h>

#include <random>

namespace rtsp {

namespace {

constexpr uint64_t millisecond = 1'000'000;
constexpr uint32_t frameTicks = 3600;

MediaDescription mediumOf(const std::string &lines)
{
    const std::optional<SessionDescription> description = parseSessionDescription("v=0\n" + lines);
    return description && !description->media.empty() ? description->media[0] : MediaDescription();
}

MediaDescription video()
{
    return mediumOf("m=video 0 RTP/AVP 96\na=rtpmap:96 H264/90000\n");
}

MediaDescription audio()
{
    return mediumOf("m=audio 0 RTP/AVP 0\n");
}

/// A stream with one packet a frame, each 40 ms.
class MediaReceiverTest : public testing::Test
{
protected:
    explicit MediaReceiverTest(bool ordered = true)
        : m_receiver(MediaReceiver::create(video(), m_timeline, m_sink, ordered))
    {
    }
    Bytes nextPacket()
    {
        const bool key = m_frame++ % 10 == 0;
        Bytes packet = m_rtp.packet(key ? stapA({h264Sps, h264Pps, idrSlice()}) : pSlice(), true);
        m_rtp.time += frameTicks;
        return packet;
    }
    void takeFrame() { take(nextPacket()); }
    void take(const Bytes &packet)
    {
        m_receiver->takeRtp(packet, at(m_now));
        m_now += 20;
        m_receiver->tick(at(m_now));
        m_now += 20;
    }

    StreamTimeline m_timeline;
    RecordingSink m_sink;
    std::unique_ptr<MediaReceiver> m_receiver;
    RtpStream m_rtp;
    int m_frame = 0;
    int64_t m_now = 0;
};

class UdpReceiverTest : public MediaReceiverTest
{
protected:
    UdpReceiverTest() : MediaReceiverTest(false) {}
};

Bytes senderReport(uint32_t source, uint64_t milliseconds, uint32_t rtpTime)
{
    Bytes report = {0x80, 200, 0, 6};
    append(report, source, 4);
    append(report, milliseconds / 1000 << 32 | (milliseconds % 1000 << 32) / 1000, 8);
    append(report, rtpTime, 4);
    append(report, 0, 8);
    return report;
}

} // namespace

TEST_F(MediaReceiverTest, NumbersAndTimesFrames)
{
    for (int i = 0; i < 20; ++i)
        takeFrame();
    ASSERT_EQ(m_sink.video.size(), 20u);
    for (std::size_t i = 0; i < 20; ++i) {
        EXPECT_EQ(m_sink.video[i].number, i + 1);
        EXPECT_EQ(m_sink.video[i].time, 40 * millisecond * i);
        EXPECT_EQ(m_sink.video[i].key, i % 10 == 0);
        EXPECT_EQ(m_sink.video[i].arrived, at(40 * static_cast<int64_t>(i)));
        EXPECT_EQ(m_sink.video[i].format, m_sink.video[0].format);
    }
    EXPECT_EQ(m_sink.losses, 0);
    const MediaStatistics statistics = m_receiver->statistics();
    EXPECT_EQ(statistics.packets, 20u);
    EXPECT_EQ(statistics.units, 20u);
    EXPECT_EQ(statistics.lost, 0u);
}

TEST_F(MediaReceiverTest, CannotBeMadeForWhatCannotBePlayed)
{
    for (const char *medium :
         {"m=video 0 RTP/AVP 96\n", "m=video 0 RTP/AVP 96\na=rtpmap:96 VP8/90000\n",
          "m=audio 0 RTP/AVP 18\n", "m=application 0 RTP/AVP 96\na=rtpmap:96 H264/90000\n"})
        EXPECT_FALSE(MediaReceiver::create(mediumOf(medium), m_timeline, m_sink, true)) << medium;
}

TEST_F(MediaReceiverTest, NumbersThatAreMissingAreALossOverTcpToo)
{
    for (int i = 0; i < 4; ++i)
        takeFrame();
    nextPacket();
    takeFrame();
    EXPECT_EQ(m_sink.losses, 1);
    EXPECT_EQ(m_sink.video.size(), 5u);
    EXPECT_EQ(m_receiver->statistics().lost, 1u);
    // The time of the frame that was lost has passed all the same.
    EXPECT_EQ(m_sink.video[4].time, 5 * 40 * millisecond);
}

TEST_F(MediaReceiverTest, NumbersOverTcpMayStandStillOrGoBack)
{
    for (int i = 0; i < 10; ++i) {
        m_rtp.number = i < 5 ? 0 : 100;
        takeFrame();
    }
    EXPECT_EQ(m_sink.video.size(), 10u);
}

TEST_F(MediaReceiverTest, FollowsASourceThatStartsAnew)
{
    for (int i = 0; i < 10; ++i)
        takeFrame();
    m_rtp = {.source = 0x9999, .number = 40000, .time = 77};
    for (int i = 0; i < 10; ++i)
        takeFrame();
    ASSERT_EQ(m_sink.video.size(), 20u);
    for (std::size_t i = 0; i < 20; ++i) {
        EXPECT_EQ(m_sink.video[i].number, i + 1);
        EXPECT_EQ(m_sink.video[i].time, 40 * millisecond * i) << i;
    }
    EXPECT_EQ(m_sink.losses, 1);
}

TEST_F(MediaReceiverTest, IgnoresASourceThatChangesWithEachPacket)
{
    for (int i = 0; i < 10; ++i) {
        m_rtp.source = static_cast<uint32_t>(i);
        takeFrame();
    }
    EXPECT_EQ(m_sink.video.size(), 10u);
    EXPECT_EQ(m_sink.losses, 0);
}

TEST_F(MediaReceiverTest, IgnoresOtherPayloadTypes)
{
    takeFrame();
    RtpStream other = {.payloadType = 97, .source = 5, .number = 7};
    for (int i = 0; i < 10; ++i) {
        m_receiver->takeRtp(other.packet(pSlice(), true), at(m_now));
        takeFrame();
    }
    EXPECT_EQ(m_sink.video.size(), 11u);
    EXPECT_EQ(m_receiver->statistics().packets, 11u);
}

TEST_F(MediaReceiverTest, TakesAnotherDynamicTypeWhenNothingElseComes)
{
    m_rtp.payloadType = 99;
    for (int i = 0; i < 50; ++i)
        takeFrame();
    // The first second passes by.
    EXPECT_GE(m_sink.video.size(), 20u);
    EXPECT_LE(m_sink.video.size(), 25u);
    EXPECT_TRUE(m_sink.video.back().format);
}

TEST_F(MediaReceiverTest, TimesThatStandStillGoByArrival)
{
    for (int i = 0; i < 20; ++i) {
        takeFrame();
        m_rtp.time = 0;
    }
    // One packet a frame, with a marker: nothing waits for the next one.
    ASSERT_EQ(m_sink.video.size(), 20u);
    for (std::size_t i = 0; i < 20; ++i)
        EXPECT_EQ(m_sink.video[i].time, 40 * millisecond * i);
}

TEST_F(MediaReceiverTest, SaysGoodbyeUntilSomethingComes)
{
    takeFrame();
    m_receiver->takeRtcp(bytesOf("81cb000100009999"), at(m_now)); // somebody else's
    EXPECT_FALSE(m_receiver->saidGoodbye());
    m_receiver->takeRtcp(bytesOf("81cb000100001234"), at(m_now));
    EXPECT_TRUE(m_receiver->saidGoodbye());
    takeFrame();
    EXPECT_FALSE(m_receiver->saidGoodbye());
    // Beside the media.
    m_receiver->takeRtp(bytesOf("81cb000100001234"), at(m_now));
    EXPECT_TRUE(m_receiver->saidGoodbye());
}

TEST_F(MediaReceiverTest, Reports)
{
    const Bytes empty = m_receiver->receiverReport(at(0));
    EXPECT_EQ(empty[0], 0x80);
    takeFrame();
    const Bytes report = m_receiver->receiverReport(at(m_now));
    EXPECT_EQ(report[0], 0x81);
    EXPECT_EQ(report.size(), empty.size() + 24);
    EXPECT_EQ(read32(report, 8), 0x1234u);
}

TEST_F(MediaReceiverTest, SenderReportsMoveTheSoundSlowly)
{
    const auto sound = MediaReceiver::create(audio(), m_timeline, m_sink, true);
    RtpStream rtp = {.payloadType = 0, .source = 0x5678};
    const auto takeSound = [&] {
        sound->takeRtp(rtp.packet(Bytes(160, 0xff)), at(m_now - 40));
        rtp.time += 160;
        sound->takeRtp(rtp.packet(Bytes(160, 0xff)), at(m_now - 20));
        rtp.time += 160;
    };
    takeFrame();
    takeSound();
    // The camera's clocks: the sound was recorded 5 ms later than the picture beside it.
    m_receiver->takeRtcp(senderReport(0x1234, 1'000'000, 0), at(m_now));
    sound->takeRtcp(senderReport(0x5678, 1'000'005, 0), at(m_now));
    for (int i = 0; i < 10; ++i) {
        takeFrame();
        takeSound();
    }
    ASSERT_EQ(m_sink.audio.size(), 22u);
    EXPECT_EQ(m_sink.audio[0].time, 0u);
    EXPECT_EQ(m_sink.audio[1].time, 20 * millisecond);
    for (std::size_t i = 2; i < 22; ++i) {
        const uint64_t shift = std::min<uint64_t>(i - 1, 5) * millisecond;
        EXPECT_NEAR(static_cast<double>(m_sink.audio[i].time),
                    static_cast<double>(i * 20 * millisecond + shift), 2000.0);
    }
    // A wild report of the picture's clock, later: it is not believed.
    m_receiver->takeRtcp(senderReport(0x1234, 5'000'000, 0), at(m_now));
    const uint64_t before = m_sink.audio.back().time;
    takeSound();
    EXPECT_GE(m_sink.audio.back().time, before);
    EXPECT_LE(m_sink.audio.back().time, before + 41 * millisecond);
}

TEST_F(MediaReceiverTest, TheTimeOfSoundNeverGoesBack)
{
    const auto sound = MediaReceiver::create(audio(), m_timeline, m_sink, true);
    RtpStream rtp = {.payloadType = 0};
    uint64_t last = 0;
    std::mt19937 random(1); // the same each time
    for (int i = 0; i < 1000; ++i) {
        rtp.time = random() % 10 == 0 ? static_cast<uint32_t>(random()) : rtp.time + 160;
        sound->takeRtp(rtp.packet(Bytes(160, 0xff)), at(20 * i));
        ASSERT_GE(m_sink.audio.back().time, last);
        last = m_sink.audio.back().time;
    }
    EXPECT_EQ(m_sink.audio.size(), 1000u);
}

TEST_F(UdpReceiverTest, BringsPacketsIntoOrder)
{
    std::mt19937 random(7); // the same each time
    int swapped = 0;
    for (int i = 0; i < 500; ++i) {
        if (random() % 50 == 0) {
            const Bytes first = nextPacket();
            const Bytes second = nextPacket();
            m_receiver->takeRtp(second, at(m_now));
            take(first);
            ++swapped;
        } else {
            takeFrame();
        }
    }
    EXPECT_GT(swapped, 2);
    EXPECT_EQ(m_sink.video.size(), 500u + static_cast<std::size_t>(swapped));
    EXPECT_EQ(m_sink.losses, 0);
    EXPECT_EQ(m_receiver->statistics().reordered, static_cast<uint64_t>(swapped));
}

TEST_F(UdpReceiverTest, TellsWhatIsHeldBack)
{
    takeFrame();
    takeFrame();
    nextPacket();
    EXPECT_FALSE(m_receiver->deadline());
    m_receiver->takeRtp(nextPacket(), at(m_now));
    ASSERT_TRUE(m_receiver->deadline());
    EXPECT_LE(*m_receiver->deadline(), at(m_now + 60));
    m_receiver->tick(at(m_now + 60));
    // What was behind it may be held by its marker, for a moment.
    m_receiver->tick(at(m_now + 120));
    EXPECT_FALSE(m_receiver->deadline());
    EXPECT_EQ(m_sink.video.size(), 3u);
    EXPECT_EQ(m_sink.losses, 1);
}

TEST_F(UdpReceiverTest, AStrayPacketOfSomebodyElseChangesNothing)
{
    for (int i = 0; i < 10; ++i) {
        takeFrame();
        RtpStream other = {.source = static_cast<uint32_t>(0x7000 + i), .number = 9};
        m_receiver->takeRtp(other.packet(pSlice(), true), at(m_now));
    }
    EXPECT_EQ(m_sink.video.size(), 10u);
    EXPECT_EQ(m_sink.losses, 0);
    m_rtp = {.source = 0x9999, .number = 40000, .time = 77};
    m_frame = 9;
    for (int i = 0; i < 3; ++i)
        takeFrame(); // another source that stays
    EXPECT_EQ(m_sink.video.size(), 12u);
}

} // namespace rtsp
