#include "platform/media/clip_names.h"
#include "platform/media/recorder.h"
#include "tests/platform/cammgr/encoded_stream.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

using namespace media;

namespace {

constexpr double frameTime = 0.04;

class RecorderTest : public testing::Test
{
protected:
    void feed(const std::vector<media::AccessUnit> &units)
    {
        for (const media::AccessUnit &unit : units) {
            m_memory.takeFrame(unit);
            m_recorder->takeFrame(unit);
        }
    }

    /// 20 ms of G.711 silence each, from a time on.
    void feedAudio(GstClockTime from, int pieces)
    {
        const auto caps =
            media::CapsRef::adopt(gst_caps_from_string("audio/x-mulaw,rate=8000,channels=1"));
        for (int i = 0; i < pieces; ++i) {
            GstBuffer *buffer = gst_buffer_new_allocate(nullptr, 160, nullptr);
            gst_buffer_memset(buffer, 0, 0xff, 160);
            GST_BUFFER_DURATION(buffer) = 20 * GST_MSECOND;
            const media::AudioUnit unit{media::BufferRef::adopt(buffer), caps,
                                        from + i * 20 * GST_MSECOND};
            m_memory.takeAudio(unit);
            m_recorder->takeAudio(unit);
        }
    }

    bool waitUntilClosed() { return m_closing->wait(30s); }
    std::string clip(int number) const { return media::clipPath(m_base, number); }
    static bool exists(const std::string &path) { return access(path.c_str(), F_OK) == 0; }

    TemporaryFolder m_folder;
    const std::string m_base = m_folder.file("20240305_070809");
    media::GopBuffer m_memory;
    std::shared_ptr<media::ClosingClips> m_closing = std::make_shared<media::ClosingClips>();
    int m_keyFrameWishes = 0;
    std::shared_ptr<media::Recorder> m_recorder =
        std::make_shared<media::Recorder>(m_memory, m_closing, [this] { ++m_keyFrameWishes; });
};

void expectEvenTimes(const std::vector<double> &times, size_t count)
{
    ASSERT_EQ(times.size(), count);
    for (size_t i = 0; i < times.size(); ++i)
        EXPECT_NEAR(times[i], static_cast<double>(i) * frameTime, 0.002) << i;
}

} // namespace

TEST_F(RecorderTest, StartsAtTheKeyFrameBeforeTheButton)
{
    const auto units = EncodedStream::make({.frames = 75});
    // Key frames are 0, 25 and 50; the button is pressed at 40.
    feed({units.begin(), units.begin() + 40});
    EXPECT_EQ(m_recorder->begin(m_base, 104857600, false), 0);
    EXPECT_TRUE(m_recorder->isWriting());
    feed({units.begin() + 40, units.end()});
    EXPECT_EQ(m_recorder->end(), 0);
    EXPECT_FALSE(m_recorder->isWriting());
    ASSERT_TRUE(waitUntilClosed());

    expectEvenTimes(MediaProbe::videoTimes(clip(1)), 50);
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 50);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
    EXPECT_TRUE(MediaProbe::indexFirst(clip(1)));
    EXPECT_NEAR(MediaProbe::duration(clip(1)), 2.0, 0.05);
    const auto seen = MediaProbe::discover(clip(1));
    EXPECT_NEAR(seen.duration, 2.0, 0.05);
    EXPECT_TRUE(seen.seekable);
    EXPECT_EQ(m_keyFrameWishes, 0);
}

TEST_F(RecorderTest, FinishedClipHasNoRoomLeftInIt)
{
    const auto units = EncodedStream::make({.frames = 75});
    uintmax_t pictures = 0;
    for (const media::AccessUnit &unit : units)
        pictures += unit.size();
    feed({units.begin(), units.begin() + 1});
    EXPECT_EQ(m_recorder->begin(m_base, 104857600, false), 0);
    feed({units.begin() + 1, units.end()});
    EXPECT_EQ(m_recorder->end(), 0);
    ASSERT_TRUE(waitUntilClosed());
    constexpr uintmax_t index = 8 * 1024; // of three seconds
    EXPECT_LT(std::filesystem::file_size(clip(1)), pictures + index);
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 75);
    EXPECT_TRUE(MediaProbe::indexFirst(clip(1)));
}

TEST_F(RecorderTest, WaitsForAKeyFrameWhenThereWasNone)
{
    const auto units = EncodedStream::make({.frames = 50});
    feed({units.begin() + 10, units.begin() + 15});
    EXPECT_EQ(m_recorder->begin(m_base, 0, false), 0);
    EXPECT_EQ(m_keyFrameWishes, 1);
    feed({units.begin() + 15, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 25);
}

TEST_F(RecorderTest, FolderThatCannotBeWrittenIsAnError)
{
    EXPECT_LT(m_recorder->begin(m_folder.file("missing/clip"), 0, false), 0);
    EXPECT_FALSE(m_recorder->isWriting());
    EXPECT_LT(m_recorder->end(), 0);
}

TEST_F(RecorderTest, SecondBeginIsAnError)
{
    EXPECT_EQ(m_recorder->begin(m_base, 0, false), 0);
    EXPECT_LT(m_recorder->begin(m_base + "b", 0, false), 0);
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_FALSE(exists(clip(1)));
}

TEST_F(RecorderTest, CameraAudioBecomesAac)
{
    const auto units = EncodedStream::make({.frames = 100});
    feed({units.begin(), units.begin() + 10});
    feedAudio(0, 20);
    m_recorder->begin(m_base, 0, true);
    for (size_t i = 10; i < units.size(); ++i) {
        feed({units[i]});
        feedAudio(units[i].time, 2);
    }
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 100);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, CameraThatFallsSilentDoesNotHoldTheVideoBack)
{
    const auto units = EncodedStream::make({.frames = 250});
    feed({units.begin(), units.begin() + 10});
    feedAudio(0, 20);
    m_recorder->begin(m_base, 0, true);
    feed({units.begin() + 10, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 250);
}

TEST_F(RecorderTest, HolesInTheSoundAreSilence)
{
    const auto units = EncodedStream::make({.frames = 250});
    feed({units.begin(), units.begin() + 1});
    feedAudio(0, 2);
    m_recorder->begin(m_base, 0, true);
    for (size_t i = 1; i < units.size(); ++i) {
        feed({units[i]});
        // From 2 to 6 s there is none, and none in the last 2 s.
        if (i < 50 || (i >= 150 && i < 200))
            feedAudio(units[i].time, 2);
    }
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 250);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
    EXPECT_LT(MediaProbe::longestAudioGap(clip(1)), 0.2);
    EXPECT_GT(MediaProbe::audioDuration(clip(1)), 9.0);
    EXPECT_LT(MediaProbe::audioDuration(clip(1)), 10.2);
}

TEST_F(RecorderTest, SoundMayComeAfterTheButton)
{
    const auto units = EncodedStream::make({.frames = 100});
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 0, true);
    for (size_t i = 1; i < units.size(); ++i) {
        feed({units[i]});
        if (i >= 8)
            feedAudio(units[i].time, 2);
    }
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 100);
    EXPECT_NEAR(MediaProbe::audioDuration(clip(1)), 4.0, 0.4);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, SoundOfAKnownKindIsNotWaitedFor)
{
    const auto units = EncodedStream::make({.frames = 100});
    m_recorder->expectAudio(
        media::CapsRef::adopt(gst_caps_from_string("audio/x-mulaw,rate=8000,channels=1")));
    m_recorder->begin(m_base, 0, true);
    // 0.64 s without a sound.
    feed({units.begin(), units.begin() + 17});
    EXPECT_TRUE(waitUntil([&] {
        std::error_code error;
        return std::filesystem::file_size(clip(1), error) > 0 && !error;
    }));
    for (size_t i = 17; i < units.size(); ++i) {
        feed({units[i]});
        feedAudio(units[i].time, 2);
    }
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 100);
    EXPECT_NEAR(MediaProbe::audioDuration(clip(1)), 4.0, 0.3);
    EXPECT_LT(MediaProbe::longestAudioGap(clip(1)), 0.2);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, SoundThatBeginsLateIsHeard)
{
    const auto units = EncodedStream::make({.frames = 200});
    feed({units.begin(), units.begin() + 1});
    feedAudio(0, 1); // what the camera's sound is, then nothing for 5 s
    m_recorder->begin(m_base, 0, true);
    for (size_t i = 1; i < units.size(); ++i) {
        feed({units[i]});
        if (i >= 125)
            feedAudio(units[i].time, 2);
    }
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_LT(MediaProbe::longestAudioGap(clip(1)), 0.2);
    EXPECT_NEAR(MediaProbe::audioDuration(clip(1)), 8.0, 0.3);
}

TEST_F(RecorderTest, AudioThatNeverComesAgainDoesNotHoldTheVideoBack)
{
    const auto units = EncodedStream::make({.frames = 250, .start = 2 * GST_SECOND});
    feedAudio(GST_SECOND + 500 * GST_MSECOND, 20); // ends before the first picture
    feed({units.begin(), units.begin() + 10});
    m_recorder->begin(m_base, 0, true);
    feed({units.begin() + 10, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 250);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, OnePieceOfAudioMakesAReadableFile)
{
    const auto units = EncodedStream::make({.frames = 100});
    feed({units.begin(), units.begin() + 1});
    feedAudio(0, 1);
    m_recorder->begin(m_base, 0, true);
    feed({units.begin() + 1, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 100);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, PicturesThatComeAtOneTimeAreAllShown)
{
    auto units = EncodedStream::make({.frames = 75});
    for (size_t i = 30; i < 40; ++i)
        units[i].time = units[40].time;
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 0, false);
    feed({units.begin() + 1, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    const auto times = MediaProbe::videoTimes(clip(1));
    ASSERT_EQ(times.size(), 75u);
    for (size_t i = 1; i < times.size(); ++i)
        EXPECT_GT(times[i], times[i - 1]) << i;
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, SoundWhoseClockIsSetBackStaysInOrder)
{
    const auto units = EncodedStream::make({.frames = 100});
    feed({units.begin(), units.begin() + 1});
    feedAudio(0, 1);
    m_recorder->begin(m_base, 0, true);
    feedAudio(680 * GST_MSECOND, 10);
    for (size_t i = 1; i < units.size(); ++i) {
        feed({units[i]});
        feedAudio(units[i].time, 2);
    }
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::codecs(clip(1)), "h264 aac");
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 100);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, ClipOfOneFrameIsAFile)
{
    const auto units = EncodedStream::make({.frames = 1});
    feed(units);
    m_recorder->begin(m_base, 0, true);
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 1);
}

TEST_F(RecorderTest, LimitRollsOverWithoutALostFrame)
{
    const auto units = EncodedStream::make({.frames = 500, .pattern = "snow"});
    const int limit = 700'000;
    feed({units.begin(), units.begin() + 10});
    m_recorder->begin(m_base, limit, false);
    feed({units.begin() + 10, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());

    int number = 1;
    size_t frames = 0;
    for (; exists(clip(number)); ++number) {
        const auto times = MediaProbe::videoTimes(clip(number));
        expectEvenTimes(times, times.size());
        EXPECT_EQ(MediaProbe::decodedFrames(clip(number)), static_cast<int>(times.size()));
        EXPECT_LE(std::filesystem::file_size(clip(number)), static_cast<uintmax_t>(limit));
        frames += times.size();
    }
    EXPECT_EQ(frames, units.size());
    EXPECT_GT(number, 3);
    EXPECT_FALSE(exists(clip(1) + ".jpeg"));
    for (int i = 2; i < number; ++i)
        EXPECT_TRUE(waitUntil([&] { return exists(clip(i) + ".jpeg"); })) << i;
}

TEST_F(RecorderTest, NewPictureSizeStartsANewClip)
{
    const auto small = EncodedStream::make({.frames = 50});
    const auto large = EncodedStream::make(
        {.frames = 50, .width = 640, .height = 480, .start = 2 * GST_SECOND, .firstNumber = 51});
    feed({small.begin(), small.begin() + 1});
    m_recorder->begin(m_base, 0, false);
    feed({small.begin() + 1, small.end()});
    feed(large);
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 50);
    EXPECT_EQ(MediaProbe::decodedFrames(clip(2)), 50);
    EXPECT_FALSE(exists(clip(3)));
}

TEST_F(RecorderTest, ReorderedPicturesKeepTheirTimes)
{
    const auto units =
        EncodedStream::make({.frames = 75, .encoder = "bframes=2 b-adapt=false sync-lookahead=0"});
    const bool reordered =
        std::any_of(units.begin(), units.end(),
                    [](const media::AccessUnit &unit) { return unit.bipredictive; });
    ASSERT_TRUE(reordered);
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 0, false);
    feed({units.begin() + 1, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    auto times = MediaProbe::videoTimes(clip(1));
    EXPECT_FALSE(std::is_sorted(times.begin(), times.end()));
    std::sort(times.begin(), times.end());
    ASSERT_EQ(times.size(), 75u);
    for (size_t i = 1; i < times.size(); ++i)
        EXPECT_NEAR(times[i] - times[i - 1], frameTime, 0.002);
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, TimeThatIsSetBackDoesNotSplitTheClip)
{
    auto units = EncodedStream::make({.frames = 100});
    constexpr GstClockTime step = 70 * GST_MSECOND;
    for (size_t i = 70; i < units.size(); ++i)
        units[i].time -= step;
    ASSERT_LT(units[70].time, units[69].time);
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 0, false);
    feed({units.begin() + 1, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 100);
    EXPECT_FALSE(exists(clip(2)));
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}

TEST_F(RecorderTest, DiskThatHasNoRoomForTheIndexLeavesNoFile)
{
    const auto units = EncodedStream::make({.frames = 60});
    const auto old = signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limited = before;
    limited.rlim_cur = 20'000;
    setrlimit(RLIMIT_FSIZE, &limited);
    feed({units.begin(), units.begin() + 1});
    EXPECT_EQ(m_recorder->begin(m_base, 104857600, false), 0);
    feed({units.begin() + 1, units.end()});
    EXPECT_TRUE(waitUntil([&] { return !m_recorder->isWriting(); }));
    EXPECT_TRUE(waitUntilClosed());
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, old);
    EXPECT_FALSE(exists(clip(1)));
}

TEST_F(RecorderTest, FullDiskEndsTheClipAndWhatWasWrittenPlays)
{
    const auto units = EncodedStream::make({.frames = 500, .pattern = "snow"});
    const auto old = signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limited = before;

    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 104857600, false);
    feed({units.begin() + 1, units.begin() + 200});
    ASSERT_TRUE(waitUntil([&] { return MediaProbe::duration(clip(1)) > 4; }));
    limited.rlim_cur = std::filesystem::file_size(clip(1)) + 200'000;
    setrlimit(RLIMIT_FSIZE, &limited);
    feed({units.begin() + 200, units.end()});
    EXPECT_TRUE(waitUntil([&] { return !m_recorder->isWriting(); }));
    EXPECT_TRUE(waitUntilClosed());
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, old);

    const int frames = MediaProbe::decodedFrames(clip(1));
    EXPECT_GT(frames, 150);
    EXPECT_LT(frames, 500);
    const auto seen = MediaProbe::discover(clip(1));
    EXPECT_TRUE(seen.video);
    EXPECT_NEAR(seen.duration, frames * frameTime, 0.2);
    // The next recording is unaffected.
    EXPECT_EQ(m_recorder->begin(m_base + "b", 0, false), 0);
    m_recorder->end();
    EXPECT_TRUE(waitUntilClosed());
}

TEST_F(RecorderTest, ClipsSortInTheirOrderByName)
{
    EXPECT_EQ(media::clipPath("/album/20240305_070809", 1), "/album/20240305_070809.mp4");
    EXPECT_EQ(media::clipPath("/album/20240305_070809", 2), "/album/20240305_070809_0002.mp4");
    std::string before;
    for (int number = 1; number <= 2000; ++number) {
        const std::string path = media::clipPath(m_base, number);
        EXPECT_LT(before, path);
        before = path;
    }
    EXPECT_LT(before, media::clipPath(m_folder.file("20240305_070810"), 1));
}

TEST_F(RecorderTest, TwoRecordingsWithOneBaseAreTwoWholeFiles)
{
    const auto units = EncodedStream::make({.frames = 300});
    constexpr size_t first = 130;
    feed({units.begin(), units.begin() + 1});
    ASSERT_EQ(m_recorder->begin(m_base, 104857600, true), 0);
    feed({units.begin() + 1, units.begin() + first});
    m_recorder->end();
    // The first is still being closed: with sound announced its file is not even made yet.
    ASSERT_EQ(m_recorder->begin(m_base, 104857600, true), 0);
    feed({units.begin() + first, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), static_cast<int>(first));
    // From the key frame before the button.
    EXPECT_EQ(MediaProbe::decodedFrames(clip(2)), 300 - 125);
    EXPECT_TRUE(exists(clip(2) + ".jpeg")) << "the client made the still of clip 1 only";
    EXPECT_FALSE(exists(clip(3)));
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
    EXPECT_EQ(MediaProbe::complaints(clip(2)), "");
}

TEST_F(RecorderTest, ClipOfAnEarlierRecordingWithTheSameBaseStays)
{
    const std::string old = "the same hour, twice in a night of autumn";
    std::ofstream(clip(1)) << old;
    const auto units = EncodedStream::make({.frames = 50});
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 0, false);
    feed({units.begin() + 1, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(std::filesystem::file_size(clip(1)), old.size());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(2)), 50);
}

TEST_F(RecorderTest, ClipThatIsDeletedWhileItGrowsStaysAway)
{
    const auto units = EncodedStream::make({.frames = 500, .pattern = "snow"});
    feed({units.begin(), units.begin() + 10});
    m_recorder->begin(m_base, 700'000, false);
    feed({units.begin() + 10, units.begin() + 300});
    ASSERT_TRUE(waitUntil([&] { return exists(clip(2) + ".jpeg"); }));
    ASSERT_TRUE(m_recorder->isWriting());
    for (int number = 1; exists(clip(number)); ++number) {
        std::filesystem::remove(clip(number));
        std::filesystem::remove(clip(number) + ".jpeg");
    }
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    const std::filesystem::directory_iterator left(m_folder.path());
    EXPECT_EQ(left, end(left)) << left->path();
}

TEST_F(RecorderTest, RecordingTidiesItsFolder)
{
    const std::string left = clip(1) + ".7.part";
    std::ofstream(left) << "of a process that was killed";
    std::filesystem::last_write_time(left, std::filesystem::file_time_type::clock::now() - 1h);
    m_recorder->begin(m_base, 0, false);
    EXPECT_TRUE(waitUntil([&] { return !exists(left); }));
    m_recorder->end();
}

TEST_F(RecorderTest, RecordingGoesOnWhenThereIsRoomAgain)
{
    auto units = EncodedStream::make({.frames = 500, .pattern = "snow"});
    const auto old = signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limited = before;
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 104857600, false);
    EXPECT_FALSE(m_recorder->isWaiting());
    feed({units.begin() + 1, units.begin() + 200});
    ASSERT_TRUE(waitUntil([&] { return MediaProbe::duration(clip(1)) > 4; }));
    limited.rlim_cur = std::filesystem::file_size(clip(1)) + 200'000;
    setrlimit(RLIMIT_FSIZE, &limited);
    feed({units.begin() + 200, units.end()});
    EXPECT_TRUE(waitUntil([&] { return m_recorder->isWaiting(); }));
    EXPECT_FALSE(m_recorder->isWriting());
    setrlimit(RLIMIT_FSIZE, &before);
    signal(SIGXFSZ, old);

    size_t next = 0;
    EXPECT_TRUE(waitUntil([&] {
        for (size_t i = 0; i < 25; ++i, ++next) {
            media::AccessUnit unit = units[next % units.size()];
            unit.number = units.size() + next + 1;
            unit.time = units.back().time + (next + 1) * 40 * GST_MSECOND;
            feed({unit});
        }
        return m_recorder->isWriting();
    }));
    EXPECT_FALSE(m_recorder->isWaiting());
    EXPECT_EQ(m_recorder->end(), 0);
    EXPECT_FALSE(m_recorder->isWaiting());
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_GT(MediaProbe::decodedFrames(clip(1)), 150);
    EXPECT_GT(MediaProbe::decodedFrames(clip(2)), 50);
    EXPECT_TRUE(exists(clip(2) + ".jpeg"));
    EXPECT_FALSE(exists(clip(3)));
}

TEST_F(RecorderTest, EndEndsTheWaitForRoom)
{
    const auto units = EncodedStream::make({.frames = 60});
    EXPECT_EQ(m_recorder->begin(m_base, 0, false), 0);
    EXPECT_TRUE(m_recorder->isWaiting()) << "for a key frame";
    EXPECT_FALSE(m_recorder->isWriting());
    EXPECT_EQ(m_recorder->end(), 0);
    EXPECT_FALSE(m_recorder->isWaiting());
    feed(units);
    EXPECT_TRUE(waitUntilClosed());
    EXPECT_FALSE(exists(clip(1)));
}

TEST_F(RecorderTest, OnlyAStreamWithBFramesIsWrittenAsReordered)
{
    // High profile may have B frames; one that has none loses nothing by them.
    const auto units =
        EncodedStream::make({.frames = 50, .encoder = "tune=zerolatency dct8x8=true"});
    const GstStructure *caps = gst_caps_get_structure(units.front().caps.get(), 0);
    guint8 profile = 0;
    gst_buffer_extract(gst_value_get_buffer(gst_structure_get_value(caps, "codec_data")), 1,
                       &profile, 1);
    ASSERT_EQ(profile, 100); // High
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 0, false);
    feed({units.begin() + 1, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 50);
    std::ifstream file(clip(1), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    // The table of composition offsets (ISO/IEC 14496-12 8.6.1.3).
    EXPECT_EQ(bytes.find("ctts"), std::string::npos);
}

TEST_F(RecorderTest, BFramesFromTheFirstMomentFillOneClip)
{
    const auto units =
        EncodedStream::make({.frames = 75, .encoder = "bframes=3 b-adapt=false sync-lookahead=0"});
    feed({units.begin(), units.begin() + 1});
    m_recorder->begin(m_base, 0, false);
    feed({units.begin() + 1, units.end()});
    m_recorder->end();
    ASSERT_TRUE(waitUntilClosed());
    EXPECT_EQ(MediaProbe::decodedFrames(clip(1)), 75);
    EXPECT_FALSE(exists(clip(2)));
    EXPECT_EQ(MediaProbe::complaints(clip(1)), "");
}
