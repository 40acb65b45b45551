#include "platform/rtsp/rtp_clock.h"
#include "platform/rtsp/stream_timeline.h"
#include "tests/platform/rtsp/support/rtp_stream.h"

#include <gtest/gtest.h>

namespace rtsp {

namespace {

constexpr int64_t millisecond = 1'000'000;
constexpr int64_t frame = 40 * millisecond;
constexpr uint32_t frameTicks = 3600;

} // namespace

TEST(RtpClock, GoesByRtpTimesOnceItHasBegun)
{
    RtpClock clock(90000);
    EXPECT_EQ(clock.next(1000, 5 * millisecond, false), 5 * millisecond);
    // Whatever the network does with the packets.
    EXPECT_EQ(clock.next(1000 + frameTicks, 99 * millisecond, false), 5 * millisecond + frame);
    EXPECT_EQ(clock.next(1000 + 2 * frameTicks, 99 * millisecond, false),
              5 * millisecond + 2 * frame);
}

TEST(RtpClock, GoesOnOverTheWrap)
{
    RtpClock clock(90000);
    uint32_t time = 0xffffffff - 2 * frameTicks;
    for (int i = 0; i < 10; ++i, time += frameTicks)
        EXPECT_EQ(clock.next(time, 0, false), i * frame);
    EXPECT_EQ(clock.epoch(), 1u);
}

TEST(RtpClock, StaysExactForDays)
{
    RtpClock clock(90000);
    uint32_t time = 7;
    static_cast<void>(clock.next(time, 0, false));
    int64_t last = 0;
    constexpr int steps = 100000; // of 9 s
    for (int i = 0; i < steps; ++i) {
        time += 9 * 90000;
        last = clock.next(time, 0, false);
    }
    EXPECT_EQ(last, int64_t{steps} * 9000 * millisecond);
}

TEST(RtpClock, GoesOnByArrivalWhereTimesJump)
{
    for (const int64_t seconds : {11, 3600, -11, -3600}) {
        RtpClock clock(90000);
        static_cast<void>(clock.next(1u << 30, 0, false));
        static_cast<void>(clock.next((1u << 30) + frameTicks, frame, false));
        const auto jumped = static_cast<uint32_t>((1 << 30) + seconds * 90000);
        EXPECT_EQ(clock.next(jumped, 2 * frame + 3 * millisecond, false),
                  2 * frame + 3 * millisecond);
        EXPECT_EQ(clock.next(jumped + frameTicks, 9 * frame, false), 3 * frame + 3 * millisecond);
        EXPECT_EQ(clock.epoch(), 2u);
    }
}

TEST(RtpClock, BelievesAPause)
{
    RtpClock clock(90000);
    static_cast<void>(clock.next(0, 0, false));
    EXPECT_EQ(clock.next(9 * 90000, 9000 * millisecond, false), 9000 * millisecond);
    EXPECT_EQ(clock.epoch(), 1u);
}

TEST(RtpClock, GoesByArrivalWhereTimesStandStill)
{
    RtpClock clock(90000);
    int64_t last = -1;
    for (int i = 0; i < 10; ++i) {
        const int64_t time = clock.next(42, i * frame, false);
        EXPECT_EQ(time, i * frame);
        last = time;
    }
    // Even when several arrive at once.
    EXPECT_GT(clock.next(42, 9 * frame, false), last);
}

TEST(RtpClock, GoesBackForReorderedFramesOnly)
{
    RtpClock clock(90000);
    static_cast<void>(clock.next(90000, 0, false));
    EXPECT_EQ(clock.next(90000 + 3 * frameTicks, frame, false), 3 * frame);
    EXPECT_EQ(clock.next(90000 + frameTicks, 2 * frame, true), frame);
    EXPECT_EQ(clock.next(90000 + 2 * frameTicks, 3 * frame, true), 2 * frame);
    EXPECT_EQ(clock.next(90000 + 6 * frameTicks, 4 * frame, false), 6 * frame);
    // Others go on.
    EXPECT_EQ(clock.next(90000 + 5 * frameTicks, 5 * frame, false), 7 * frame);
    EXPECT_EQ(clock.next(90000 + 6 * frameTicks, 6 * frame, false), 8 * frame);
    // And no reordering goes back by seconds.
    EXPECT_EQ(clock.next(90000 - 5 * 90000, 7 * frame, true), 9 * frame);
}

TEST(RtpClock, GoesByArrivalWhereTheRateIsWrong)
{
    // Times of 1/16000 s where 1/8000 is told, and the other way round
    for (const uint32_t ticks : {640u, 160u}) {
        RtpClock clock(8000);
        uint32_t time = 0;
        int64_t last = 0;
        for (int i = 0; i < 1000; ++i, time += ticks)
            last = clock.next(time, i * frame, false);
        const int64_t told = clock.next(time, 1000 * frame, false);
        EXPECT_EQ(told - last, frame) << ticks;
        EXPECT_FALSE(clock.at(time));
        // Right again, it is believed again.
        for (int i = 1001; i < 1300; ++i)
            static_cast<void>(clock.next(time += 320, i * frame, false));
        EXPECT_TRUE(clock.at(time)) << ticks;
    }
}

TEST(RtpClock, BurstsAreNoOtherRate)
{
    RtpClock clock(90000);
    uint32_t time = 0;
    int64_t expected = 0;
    const auto next = [&](int64_t arrived) {
        EXPECT_EQ(clock.next(time, arrived, false), expected);
        time += frameTicks;
        expected += frame;
    };
    // What the camera had kept comes at once, then life; a stall of 8 s, and what had piled up.
    for (int i = 0; i < 200; ++i)
        next(i);
    for (int i = 0; i < 500; ++i)
        next(i * frame);
    for (int i = 0; i < 200; ++i)
        next(28000 * millisecond + i);
    for (int i = 0; i < 1000; ++i)
        next(28000 * millisecond + i * frame);
    EXPECT_EQ(clock.epoch(), 1u);
}

TEST(RtpClock, TellsOtherMomentsNearby)
{
    RtpClock clock(90000);
    EXPECT_FALSE(clock.at(0));
    static_cast<void>(clock.next(90000, 5 * millisecond, false));
    EXPECT_EQ(clock.at(90000 + frameTicks), 5 * millisecond + frame);
    EXPECT_EQ(clock.at(90000 - frameTicks), 5 * millisecond - frame);
    EXPECT_FALSE(clock.at(90000 + 11 * 90000));
    clock.restart();
    EXPECT_FALSE(clock.at(90000));
    EXPECT_EQ(clock.next(7, 5 * millisecond + 3 * frame, false), 5 * millisecond + 3 * frame);
}

TEST(StreamTimeline, BeginsWithTheFirstPacketOfAll)
{
    StreamTimeline timeline;
    EXPECT_EQ(timeline.sinceStart(at(10)), 0);
    EXPECT_EQ(timeline.sinceStart(at(15)), 5 * millisecond);
}

TEST(StreamTimeline, MovesTheSoundSlowly)
{
    StreamTimeline timeline;
    EXPECT_EQ(timeline.nextAudioShift(), 0);
    timeline.setWallClock(StreamTimeline::Medium::Video, 1'000'000 * millisecond);
    EXPECT_EQ(timeline.nextAudioShift(), 0);
    // What was heard at 0 was recorded 3 ms after what was seen at 0.
    timeline.setWallClock(StreamTimeline::Medium::Audio, 1'000'003 * millisecond);
    EXPECT_EQ(timeline.nextAudioShift(), 1 * millisecond);
    EXPECT_EQ(timeline.nextAudioShift(), 2 * millisecond);
    EXPECT_EQ(timeline.nextAudioShift(), 3 * millisecond);
    EXPECT_EQ(timeline.nextAudioShift(), 3 * millisecond);
    // Unknown again, it stays.
    timeline.setWallClock(StreamTimeline::Medium::Video, std::nullopt);
    EXPECT_EQ(timeline.nextAudioShift(), 3 * millisecond);
}

TEST(StreamTimeline, DoesNotBelieveWildClocks)
{
    StreamTimeline timeline;
    timeline.setWallClock(StreamTimeline::Medium::Video, 0);
    for (const int64_t wild : {int64_t{501}, int64_t{-501}, int64_t{3'000'000'000}}) {
        timeline.setWallClock(StreamTimeline::Medium::Audio, wild * millisecond);
        EXPECT_EQ(timeline.nextAudioShift(), 0);
    }
}

} // namespace rtsp
