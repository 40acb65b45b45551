#include "platform/media/unit_wrapper.h"

#include "platform/media/clip_names.h"
#include "platform/media/g726_packing.h"
#include "platform/media/recorder.h"
#include "platform/media/still_picture.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <gst/app/gstappsink.h>
#include <gst/video/video.h>
#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

base::Bytes bytesOf(GstBuffer *buffer)
{
    base::Bytes bytes(gst_buffer_get_size(buffer));
    gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
    return bytes;
}

/// What the elements of a chain produce, as the receiver would hand it over.
template <class Unit, class Format>
std::vector<Unit> produce(const std::string &chain, Format format)
{
    gst_init(nullptr, nullptr);
    GstElement *pipeline =
        gst_parse_launch((chain + " ! appsink name=sink sync=false").c_str(), nullptr);
    GstElement *sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
    gst_element_set_state(pipeline, GST_STATE_PLAYING);
    std::vector<Unit> units;
    std::shared_ptr<const Format> shared;
    GstClockTime first = GST_CLOCK_TIME_NONE;
    for (;;) {
        const auto sample = media::SampleRef::adopt(gst_app_sink_pull_sample(GST_APP_SINK(sink)));
        if (!sample)
            break;
        GstBuffer *buffer = gst_sample_get_buffer(sample.get());
        if (!GST_CLOCK_TIME_IS_VALID(first))
            first = GST_BUFFER_PTS(buffer);
        if (!shared) {
            const GstStructure *caps = gst_caps_get_structure(gst_sample_get_caps(sample.get()), 0);
            if (const GValue *data = gst_structure_get_value(caps, "codec_data"))
                format.configuration = bytesOf(gst_value_get_buffer(data));
            shared = std::make_shared<const Format>(format);
        }
        Unit unit;
        unit.payload = std::make_shared<const base::Bytes>(bytesOf(buffer));
        unit.format = shared;
        unit.time = GST_BUFFER_PTS(buffer) - first;
        if constexpr (std::is_same_v<Unit, base::AccessUnit>) {
            unit.number = units.size() + 1;
            unit.key = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
            unit.reference = true;
            unit.arrived = base::SteadyClock::now();
        }
        units.push_back(std::move(unit));
    }
    gst_element_set_state(pipeline, GST_STATE_NULL);
    gst_object_unref(sink);
    gst_object_unref(pipeline);
    return units;
}

struct VideoKind
{
    const char *name;
    base::VideoCodec codec;
    const char *encoder;
    const char *probed; ///< the codec as ffprobe names it
};

constexpr VideoKind videoKinds[] = {
    {"H264", base::VideoCodec::H264,
     "x264enc tune=zerolatency key-int-max=25 ! h264parse ! "
     "video/x-h264,stream-format=avc,alignment=au",
     "h264"},
    {"H265", base::VideoCodec::H265,
     "x265enc tune=zerolatency speed-preset=ultrafast key-int-max=25 ! h265parse ! "
     "video/x-h265,stream-format=hvc1,alignment=au",
     "hevc"},
    {"H265TenBit", base::VideoCodec::H265,
     "videoconvert ! video/x-raw,format=I420_10LE ! "
     "x265enc tune=zerolatency speed-preset=ultrafast key-int-max=25 ! h265parse ! "
     "video/x-h265,stream-format=hvc1,alignment=au",
     "hevc"},
    {"Jpeg", base::VideoCodec::Jpeg, "jpegenc", "mjpeg"},
};

class VideoKindTest : public testing::TestWithParam<VideoKind>
{
protected:
    std::vector<media::AccessUnit> units(int count)
    {
        const std::string chain =
            "videotestsrc pattern=ball num-buffers=" + std::to_string(count) +
            " ! video/x-raw,format=I420,width=320,height=240,framerate=25/1 ! " +
            GetParam().encoder;
        const auto received = produce<base::AccessUnit, base::VideoFormat>(
            chain, {.codec = GetParam().codec, .width = 320, .height = 240});
        std::vector<media::AccessUnit> wrapped;
        for (const base::AccessUnit &unit : received)
            wrapped.push_back(m_wrapper.wrap(unit));
        return wrapped;
    }

private:
    media::UnitWrapper m_wrapper;
};

} // namespace

TEST_P(VideoKindTest, IsDecoded)
{
    const auto all = units(10);
    ASSERT_EQ(all.size(), 10u);
    EXPECT_TRUE(all.front().key);
    EXPECT_EQ(all.front().caps.get(), all.back().caps.get());
    const media::SampleRef picture = media::decodeLast(all, 20s);
    ASSERT_TRUE(picture);
    GstVideoInfo info;
    ASSERT_TRUE(gst_video_info_from_caps(&info, gst_sample_get_caps(picture.get())));
    EXPECT_EQ(info.width, 320);
    EXPECT_EQ(info.height, 240);
}

TEST_P(VideoKindTest, IsRecordedAsItCame)
{
    TemporaryFolder folder;
    const std::string base = folder.file("20240305_070809");
    const auto all = units(50);
    ASSERT_EQ(all.size(), 50u);
    media::GopBuffer memory;
    auto closing = std::make_shared<media::ClosingClips>();
    auto recorder = std::make_shared<media::Recorder>(memory, closing, [] {});
    memory.takeFrame(all.front());
    ASSERT_EQ(recorder->begin(base, 0, false), 0);
    for (const media::AccessUnit &unit : all)
        recorder->takeFrame(unit);
    recorder->end();
    ASSERT_TRUE(closing->wait(30s));
    const std::string clip = media::clipPath(base, 1);
    EXPECT_EQ(MediaProbe::codecs(clip), GetParam().probed);
    EXPECT_EQ(MediaProbe::decodedFrames(clip), 50);
    EXPECT_EQ(MediaProbe::complaints(clip), "");
    EXPECT_NEAR(MediaProbe::duration(clip), 2.0, 0.05);
    EXPECT_TRUE(MediaProbe::discover(clip).seekable);
}

INSTANTIATE_TEST_SUITE_P(All, VideoKindTest, testing::ValuesIn(videoKinds),
                         [](const auto &each) { return std::string(each.param.name); });

namespace {

struct SoundKind
{
    const char *name;
    base::AudioFormat format;
    const char *encoder;
};

const SoundKind soundKinds[] = {
    {"Pcmu", {.codec = base::AudioCodec::Pcmu}, "audio/x-raw,rate=8000,channels=1 ! mulawenc"},
    {"Pcma", {.codec = base::AudioCodec::Pcma}, "audio/x-raw,rate=8000,channels=1 ! alawenc"},
    {"L16",
     {.codec = base::AudioCodec::L16, .rate = 16000, .channels = 2},
     "audio/x-raw,rate=16000,channels=2,format=S16BE,layout=interleaved"},
    {"Aac",
     {.codec = base::AudioCodec::Aac, .rate = 16000},
     "audio/x-raw,rate=16000,channels=1 ! avenc_aac ! "
     "audio/mpeg,mpegversion=4,stream-format=raw"},
    {"Opus",
     {.codec = base::AudioCodec::Opus, .rate = 48000, .channels = 2},
     "audio/x-raw,rate=48000,channels=2 ! opusenc"},
};

class SoundKindTest : public testing::TestWithParam<SoundKind>
{
};

} // namespace

TEST_P(SoundKindTest, IsRecordedAsAac)
{
    auto sounds = produce<base::AudioUnit, base::AudioFormat>(
        std::string("audiotestsrc num-buffers=80 samplesperbuffer=1024 ! audioconvert ! "
                    "audioresample ! ") +
            GetParam().encoder,
        GetParam().format);
    ASSERT_GT(sounds.size(), 10u);
    // A camera that is silent for a while.
    sounds.erase(sounds.begin() + 5, sounds.end() - 3);
    sounds[7].time = 1500 * GST_MSECOND;
    const auto pictures = produce<base::AccessUnit, base::VideoFormat>(
        "videotestsrc num-buffers=40 ! video/x-raw,format=I420,width=160,height=120,framerate=25/1 "
        "! x264enc tune=zerolatency ! h264parse ! video/x-h264,stream-format=avc,alignment=au",
        {.codec = base::VideoCodec::H264, .width = 160, .height = 120});

    TemporaryFolder folder;
    const std::string base = folder.file("20240305_070809");
    media::UnitWrapper wrapper;
    media::GopBuffer memory;
    auto closing = std::make_shared<media::ClosingClips>();
    auto recorder = std::make_shared<media::Recorder>(memory, closing, [] {});
    const media::AccessUnit first = wrapper.wrap(pictures.front());
    memory.takeFrame(first);
    memory.takeAudio(wrapper.wrap(sounds.front()));
    ASSERT_EQ(recorder->begin(base, 0, true), 0);
    for (const base::AudioUnit &sound : sounds)
        recorder->takeAudio(wrapper.wrap(sound));
    for (const base::AccessUnit &picture : pictures)
        recorder->takeFrame(wrapper.wrap(picture));
    recorder->end();
    ASSERT_TRUE(closing->wait(30s));
    const std::string clip = media::clipPath(base, 1);
    EXPECT_EQ(MediaProbe::codecs(clip), "h264 aac");
    EXPECT_EQ(MediaProbe::complaints(clip), "");
}

INSTANTIATE_TEST_SUITE_P(All, SoundKindTest, testing::ValuesIn(soundKinds),
                         [](const auto &each) { return std::string(each.param.name); });

TEST(UnitWrapper, SharesTheBytesAndKeepsTheTime)
{
    gst_init(nullptr, nullptr);
    base::AccessUnit unit;
    unit.payload = std::make_shared<const base::Bytes>(base::Bytes{0, 0, 0, 1, 0x65});
    unit.format = std::make_shared<const base::VideoFormat>();
    unit.number = 7;
    unit.time = 40 * GST_MSECOND;
    media::UnitWrapper wrapper;
    const media::AccessUnit delta = wrapper.wrap(unit);
    GstMapInfo map;
    ASSERT_TRUE(gst_buffer_map(delta.buffer.get(), &map, GST_MAP_READ));
    EXPECT_EQ(map.data, unit.payload->data());
    gst_buffer_unmap(delta.buffer.get(), &map);
    EXPECT_EQ(GST_BUFFER_PTS(delta.buffer.get()), 40 * GST_MSECOND);
    EXPECT_TRUE(GST_BUFFER_FLAG_IS_SET(delta.buffer.get(), GST_BUFFER_FLAG_DELTA_UNIT));
    EXPECT_EQ(delta.number, 7u);

    unit.key = true;
    unit.format =
        std::make_shared<const base::VideoFormat>(base::VideoFormat{.width = 640, .height = 360});
    const media::AccessUnit key = wrapper.wrap(unit);
    EXPECT_FALSE(GST_BUFFER_FLAG_IS_SET(key.buffer.get(), GST_BUFFER_FLAG_DELTA_UNIT));
    EXPECT_NE(key.caps.get(), delta.caps.get());
}

TEST(G726, CodesChangeTheirPlaceInAByte)
{
    using media::g726WithFirstCodeHigh;
    EXPECT_EQ(g726WithFirstCodeHigh({0x21, 0x43}, 4), (base::Bytes{0x12, 0x34}));
    EXPECT_EQ(g726WithFirstCodeHigh({0b11100100}, 2), (base::Bytes{0b00011011}));
    // Eight codes of 3 bits, 0 to 7, in three bytes.
    EXPECT_EQ(g726WithFirstCodeHigh({0b10001000, 0b11000110, 0b11111010}, 3),
              (base::Bytes{0b00000101, 0b00111001, 0b01110111}));
    // Eight codes of 5 bits: 1, 0, 0, 0, 0, 0, 0, 31.
    EXPECT_EQ(g726WithFirstCodeHigh({0x01, 0, 0, 0, 0xf8}, 5), (base::Bytes{0x08, 0, 0, 0, 0x1f}));
    EXPECT_EQ(g726WithFirstCodeHigh({0x21}, 6), base::Bytes());
    EXPECT_EQ(g726WithFirstCodeHigh({}, 4), base::Bytes());
}
