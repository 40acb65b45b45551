#include "platform/media/gop_buffer.h"
#include "platform/media/stream_stats.h"

#include <gtest/gtest.h>

using namespace media;
using namespace std::chrono_literals;

namespace {

media::AccessUnit unitOf(uint64_t number, bool key, size_t bytes = 100)
{
    gst_init(nullptr, nullptr);
    media::AccessUnit unit;
    unit.buffer = media::BufferRef::adopt(gst_buffer_new_allocate(nullptr, bytes, nullptr));
    unit.number = number;
    unit.key = key;
    unit.time = number * 40 * GST_MSECOND;
    return unit;
}

media::AudioUnit soundAt(GstClockTime time)
{
    return {media::BufferRef::adopt(gst_buffer_new_allocate(nullptr, 160, nullptr)), {}, time};
}

} // namespace

TEST(GopBuffer, HoldsWhatCameSinceTheLastKeyFrame)
{
    media::GopBuffer memory;
    memory.takeFrame(unitOf(1, false));
    EXPECT_TRUE(memory.frames().empty());
    memory.takeFrame(unitOf(2, true));
    memory.takeFrame(unitOf(3, false));
    ASSERT_EQ(memory.frames().size(), 2u);
    EXPECT_EQ(memory.frames().front().number, 2u);
    memory.takeFrame(unitOf(4, true));
    ASSERT_EQ(memory.frames().size(), 1u);
    EXPECT_EQ(memory.frames().front().number, 4u);
}

TEST(GopBuffer, ForgetsAllWhenTheKeyFrameIsTooFarBack)
{
    media::GopBuffer memory(1000);
    memory.takeFrame(unitOf(1, true, 600));
    memory.takeFrame(unitOf(2, false, 600));
    EXPECT_TRUE(memory.frames().empty());
    memory.takeFrame(unitOf(3, false, 10));
    EXPECT_TRUE(memory.frames().empty());
    memory.takeFrame(unitOf(4, true, 600));
    EXPECT_EQ(memory.frames().size(), 1u);
}

TEST(GopBuffer, KeepsTheAudioOfItsPictures)
{
    media::GopBuffer memory;
    memory.takeAudio(soundAt(20 * GST_MSECOND));
    memory.takeAudio(soundAt(60 * GST_MSECOND));
    memory.takeFrame(unitOf(1, true)); // 40 ms
    ASSERT_EQ(memory.audio().size(), 1u);
    EXPECT_EQ(memory.audio().front().time, 60 * GST_MSECOND);
}

TEST(StreamStats, CountsTheLastSecond)
{
    media::StreamStats stats;
    const auto start = media::SteadyClock::now();
    for (int i = 0; i < 50; ++i)
        stats.add(start + i * 40ms, 1000);
    const auto last = start + 49 * 40ms;
    EXPECT_EQ(stats.frames(last), 25);
    EXPECT_EQ(stats.bits(last), 25 * 1000 * 8);
    EXPECT_EQ(stats.frames(last + 500ms), 13);
    EXPECT_EQ(stats.frames(last + 5s), 0);
    EXPECT_EQ(stats.bits(last + 5s), 0);
}
