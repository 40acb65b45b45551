#include "platform/cammgr/stream_figures.h"

#include <gtest/gtest.h>

using namespace cammgr;
using namespace std::chrono_literals;

TEST(StreamFigures, AreWritten)
{
    StreamFigures figures;
    base::VideoFormat format;
    format.codec = base::VideoCodec::H265;
    format.width = 640;
    format.height = 360;
    figures.format = std::make_shared<const base::VideoFormat>(format);
    base::AudioFormat sound;
    sound.codec = base::AudioCodec::Aac;
    figures.sound = std::make_shared<const base::AudioFormat>(sound);
    figures.transport = "UDP";
    figures.video.packets = 100;
    figures.video.lost = 3;
    figures.video.units = 20;
    figures.video.damaged = 2;
    figures.video.jitter = 1500us;
    figures.view.drawn = 17;
    figures.view.dropped = 1;
    figures.view.delay = 4ms;
    figures.view.decoder = "a name that is too long for the room that the structure has";
    figures.bitRate = 512000;

    RtspPlayerFigures out = {};
    out.size = sizeof out;
    ASSERT_TRUE(figures.write(out));
    EXPECT_EQ(out.size, int(sizeof out));
    EXPECT_EQ(out.width, 640);
    EXPECT_EQ(out.height, 360);
    EXPECT_STREQ(out.codec, "H265");
    EXPECT_STREQ(out.sound_codec, "AAC");
    EXPECT_STREQ(out.transport, "UDP");
    EXPECT_STREQ(out.decoder, "a name that is too long for the");
    EXPECT_EQ(out.bit_rate, 512000);
    EXPECT_EQ(out.jitter, 1500);
    EXPECT_EQ(out.delay, 4000);
    EXPECT_EQ(out.picture_age, -1);
    EXPECT_EQ(out.frames_received, 20);
    EXPECT_EQ(out.frames_drawn, 17);
    EXPECT_EQ(out.frames_dropped, 3);
    EXPECT_EQ(out.packets_received, 100);
    EXPECT_EQ(out.packets_lost, 3);

    figures.shown = media::SteadyClock::now() - 2s;
    ASSERT_TRUE(figures.write(out));
    EXPECT_GE(out.picture_age, 2000);
    EXPECT_LT(out.picture_age, 30000);
}

TEST(StreamFigures, NeedRoomForTheirFirstVersion)
{
    RtspPlayerFigures out = {};
    out.size = sizeof out - 1;
    EXPECT_FALSE(StreamFigures().write(out));
    EXPECT_EQ(out.picture_age, 0);
    out.size = -1;
    EXPECT_FALSE(StreamFigures().write(out));
    // A later client has more fields.
    struct Later
    {
        RtspPlayerFigures figures = {};
        int64_t more = 7;
    } later;
    later.figures.size = sizeof later;
    EXPECT_TRUE(StreamFigures().write(later.figures));
    EXPECT_EQ(later.figures.picture_age, -1);
    EXPECT_EQ(later.more, 7);
}
