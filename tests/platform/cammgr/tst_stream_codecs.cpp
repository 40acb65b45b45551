#include "platform/cammgr/live_stream.h"
#include "platform/media/clip_names.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/rtsp_test_server.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/temporary_folder.h"
#include "tests/platform/cammgr/test_window.h"

#include <gtest/gtest.h>

#include <filesystem>

using cammgr::LiveStream;

namespace {

struct CodecCase
{
    const char *name;
    const char *video;  ///< encoder and payloader
    const char *audio;  ///< the same; empty: none
    const char *probed; ///< codecs of the clip, as ffprobe names them
    GstRTSPLowerTrans transport = GST_RTSP_LOWER_TRANS_TCP;
};

constexpr const char *baseline =
    "x264enc tune=zerolatency speed-preset=ultrafast key-int-max=15 ! rtph264pay name=pay0 pt=96";
constexpr const char *speech = "audio/x-raw,rate=8000,channels=1 ! ";

const CodecCase cases[] = {
    {"H264WithoutSetsInBand", baseline, "", "h264"},
    {"H264OverUdp", baseline, "", "h264", GST_RTSP_LOWER_TRANS_UDP},
    {"H264HighWithBFrames",
     "x264enc speed-preset=ultrafast bframes=2 b-adapt=false key-int-max=15 rc-lookahead=0 "
     "sliced-threads=false threads=1 ! video/x-h264,profile=high ! "
     "rtph264pay name=pay0 pt=96 config-interval=1",
     "", "h264"},
    {"H264FourSlices",
     "x264enc tune=zerolatency speed-preset=ultrafast key-int-max=15 option-string=slices=4 ! "
     "rtph264pay name=pay0 pt=96 config-interval=-1",
     "", "h264"},
    {"H265",
     "x265enc tune=zerolatency speed-preset=ultrafast key-int-max=15 ! rtph265pay name=pay0 pt=96",
     "", "hevc"},
    {"H265OverUdp",
     "x265enc tune=zerolatency speed-preset=ultrafast key-int-max=15 ! "
     "rtph265pay name=pay0 pt=96 config-interval=-1",
     "", "hevc", GST_RTSP_LOWER_TRANS_UDP},
    {"Mjpeg", "jpegenc ! rtpjpegpay name=pay0 pt=26", "", "mjpeg"},
    {"Pcma", baseline, "alawenc ! rtppcmapay name=pay1 pt=8", "h264 aac"},
    {"G726", baseline, "avenc_g726 bitrate=32000 ! rtpg726pay force-aal2=false name=pay1 pt=97",
     "h264 aac"},
    {"Aac", baseline, "avenc_aac ! rtpmp4gpay name=pay1 pt=97", "h264 aac"},
    {"AacLatm", baseline, "avenc_aac ! rtpmp4apay name=pay1 pt=97", "h264 aac"},
    {"L16", baseline, "audioconvert ! rtpL16pay name=pay1 pt=97", "h264 aac"},
    {"Opus", baseline, "audioresample ! opusenc ! rtpopuspay name=pay1 pt=97", "h264 aac"},
};

class StreamCodecTest : public testing::TestWithParam<CodecCase>
{
protected:
    static std::string pipeline()
    {
        const CodecCase &now = GetParam();
        std::string text = "( videotestsrc is-live=true pattern=ball ! "
                           "video/x-raw,format=I420,width=320,height=240,framerate=15/1 ! " +
                           std::string(now.video);
        if (*now.audio)
            text += " audiotestsrc is-live=true samplesperbuffer=320 ! " + std::string(speech) +
                    now.audio;
        return text + " )";
    }
};

} // namespace

TEST_P(StreamCodecTest, IsShownPhotographedAndRecorded)
{
    RtspTestServer server({.pipeline = pipeline(), .transports = GetParam().transport});
    TestWindow window(320, 240);
    TemporaryFolder folder;
    StreamListener listener;
    auto stream = std::make_unique<LiveStream>(listener.callbacks());
    stream->setVolume(0);
    stream->start({{.url = server.url()}, window.id()});
    ASSERT_TRUE(listener.waitForFirstFrame());
    EXPECT_EQ(stream->hasAudio(), *GetParam().audio != 0);
    EXPECT_EQ(stream->width(), 320);
    EXPECT_EQ(stream->height(), 240);
    EXPECT_TRUE(waitUntil([&] { return window.grab().white == 0; }));
    EXPECT_EQ(stream->snapshot(folder.file("photo.jpg")), 0);

    ASSERT_EQ(stream->beginWriting(folder.file("clip"), 0), 0);
    const std::string clip = media::clipPath(folder.file("clip"), 1);
    EXPECT_TRUE(waitUntil(
        [&] { return std::filesystem::exists(clip) && MediaProbe::decodedFrames(clip) >= 30; }));
    EXPECT_TRUE(listener.ends().empty());
    stream.reset(); // which finishes the clip
    EXPECT_EQ(MediaProbe::codecs(clip), GetParam().probed);
    EXPECT_EQ(MediaProbe::complaints(clip), "");
    const std::vector<double> times = MediaProbe::videoTimes(clip);
    EXPECT_GE(times.size(), 30u);
    EXPECT_NEAR(MediaProbe::duration(clip), static_cast<double>(times.size()) / 15, 0.8);
}

INSTANTIATE_TEST_SUITE_P(All, StreamCodecTest, testing::ValuesIn(cases),
                         [](const auto &each) { return std::string(each.param.name); });
