#include "camsim/camsim_process.h"
#include "tests/camsim/peer.h"

#include <gtest/gtest.h>

using namespace camsim::test;
using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

namespace {

std::string probe(const std::string &url, const std::string &more = {})
{
    return "ffprobe -v error -rtsp_transport tcp " + more +
           " -show_entries stream=codec_name,width,height,avg_frame_rate -of default=nw=1 '" + url +
           "'";
}

/// Plays for some frames and counts the pictures that come out.
std::string decode(const std::string &url, int frames, const std::string &transport = "tcp")
{
    return "ffmpeg -v error -rtsp_transport " + transport + " -i '" + url + "' -an -frames:v " +
           std::to_string(frames) + " -f framehash -";
}

} // namespace

TEST(Streams, EachCameraHasAMainAndASubStreamWithSound)
{
    const CamsimProcess camsim({"--count", "2"});
    ASSERT_EQ(camsim.cameras().size(), 2U);
    for (const SimulatedCamera &camera : camsim.cameras()) {
        const Outcome main = run(probe(camera.urlWithLogin(camera.mainUrl)));
        EXPECT_TRUE(main.has("codec_name=h264\nwidth=1280\nheight=720\n")) << main.output;
        EXPECT_TRUE(main.has("codec_name=pcm_mulaw")) << main.output;
        const Outcome sub = run(probe(camera.urlWithLogin(camera.subUrl)));
        EXPECT_TRUE(sub.has("codec_name=h264\nwidth=640\nheight=360\n")) << sub.output;
        EXPECT_TRUE(sub.has("codec_name=pcm_mulaw")) << sub.output;
    }
}

TEST(Streams, SizeAndRateAreAsOrdered)
{
    const CamsimProcess camsim({"--sub-size", "320x180", "--sub-fps", "10", "--no-audio"});
    const Outcome outcome = run(probe(camsim.camera().urlWithLogin(camsim.camera().subUrl)));
    EXPECT_TRUE(outcome.has("width=320\nheight=180\navg_frame_rate=10/1")) << outcome.output;
    EXPECT_FALSE(outcome.has("pcm_mulaw")) << outcome.output;
}

TEST(Streams, TheClientOfTheFrameworkPlaysThem)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    const Outcome outcome = run("gst-launch-1.0 rtspsrc protocols=tcp latency=0 location='" +
                                camera.urlWithLogin(camera.subUrl) +
                                "' ! rtph264depay ! avdec_h264 ! fakesink num-buffers=20");
    // What follows the end is the framework's own farewell: rtspsrc may still try to pause a
    // connection that it has just closed, and then reports an error.
    const std::string played = outcome.output.substr(0, outcome.output.find("Got EOS"));
    EXPECT_LT(played.size(), outcome.output.size()) << outcome.output;
    EXPECT_EQ(played.find("ERROR"), std::string::npos) << outcome.output;
}

TEST(Streams, FramesDecodeWithoutAnError)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    for (const std::string transport : {"tcp", "udp"}) {
        const Outcome outcome = run(decode(camera.urlWithLogin(camera.subUrl), 30, transport));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
        EXPECT_GE(outcome.linesStartingWith("0, "), 30) << transport << outcome.output;
    }
}

TEST(Streams, AnEncodedLoopDecodesAcrossItsEnd)
{
    const CamsimProcess camsim({"--canned", "--sub-fps", "30", "--sub-size", "320x180"});
    const SimulatedCamera &camera = camsim.camera();
    const Outcome outcome = run(decode(camera.urlWithLogin(camera.subUrl), 90));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.output;
    EXPECT_FALSE(outcome.has("rror")) << outcome.output;
    EXPECT_GE(outcome.linesStartingWith("0, "), 90);
}

TEST(Streams, AWrongPasswordIsRefused)
{
    const CamsimProcess camsim({"--user", "root", "--password", "right"});
    const SimulatedCamera &camera = camsim.camera();
    SimulatedCamera wrong = camera;
    wrong.password = "wrong";
    EXPECT_TRUE(run(probe(wrong.urlWithLogin(camera.subUrl))).has("401"));
    EXPECT_TRUE(run(probe(camera.subUrl)).has("401"));
    EXPECT_EQ(run(probe(camera.urlWithLogin(camera.subUrl))).exitCode, 0);
}

TEST(Streams, DigestAndBasicAreOfferedAndOptionsNeedsNoLogin)
{
    const CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    RawRtsp stranger(camera.address, camera.rtspPort, "/live/1/h264.sdp", "", "");
    EXPECT_TRUE(stranger.ask("OPTIONS").starts_with("RTSP/1.0 200"));
    const std::string refusal = stranger.ask("DESCRIBE");
    EXPECT_TRUE(refusal.starts_with("RTSP/1.0 401")) << refusal;
    EXPECT_NE(refusal.find("WWW-Authenticate: Digest"), std::string::npos) << refusal;
    EXPECT_NE(refusal.find("WWW-Authenticate: Basic"), std::string::npos) << refusal;
}

TEST(Streams, AStreamCanBeDescribedAgainAndAgain)
{
    const CamsimProcess camsim({"--count", "1", "--canned"});
    const SimulatedCamera &camera = camsim.camera();
    RawRtsp first(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                  camera.password);
    RawRtsp second(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                   camera.password);
    for (int round = 0; round < 5; ++round) {
        EXPECT_TRUE(first.ask("DESCRIBE").starts_with("RTSP/1.0 200")) << round;
        EXPECT_TRUE(second.ask("DESCRIBE").starts_with("RTSP/1.0 200")) << round;
    }
    EXPECT_TRUE(first.play());
    EXPECT_TRUE(first.receivesData(20'000));
    EXPECT_TRUE(second.play());
    EXPECT_TRUE(second.receivesData(20'000));
}

TEST(Streams, OtherPathsAnswerNotFoundOnTheUsualOnes)
{
    const CamsimProcess camsim({"--alt-paths"});
    const SimulatedCamera &camera = camsim.camera();
    RawRtsp usual(camera.address, camera.rtspPort, "/live/0/h264.sdp", camera.user,
                  camera.password);
    EXPECT_TRUE(usual.ask("DESCRIBE").starts_with("RTSP/1.0 404"));
    EXPECT_NE(camera.mainUrl.find("/cam/main"), std::string::npos);
    EXPECT_EQ(run(probe(camera.urlWithLogin(camera.mainUrl))).exitCode, 0);
}

TEST(Streams, ACameraMayOfferOneTransportOnly)
{
    const CamsimProcess camsim({"--transport", "udp"});
    const SimulatedCamera &camera = camsim.camera();
    EXPECT_NE(run(decode(camera.urlWithLogin(camera.subUrl), 5)).exitCode, 0);
    EXPECT_EQ(run(decode(camera.urlWithLogin(camera.subUrl), 5, "udp")).exitCode, 0);
}

TEST(Streams, StatusTellsTheLongestTimeBetweenTwoFrames)
{
    CamsimProcess camsim({"--sub-fps", "5", "--canned"});
    const SimulatedCamera &camera = camsim.camera();
    EXPECT_EQ(camsim.statusNumber("longest_frame_gap_ms"), 0);
    RawRtsp client(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                   camera.password);
    ASSERT_TRUE(client.play());
    EXPECT_TRUE(eventually([&] { return camsim.statusNumber("longest_frame_gap_ms") >= 200; }));
}

TEST(Streams, TheEncoderRestsWhenNobodyWatches)
{
    CamsimProcess camsim;
    const SimulatedCamera &camera = camsim.camera();
    {
        RawRtsp client(camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user,
                       camera.password);
        ASSERT_TRUE(client.play());
        ASSERT_TRUE(client.receivesData(10'000));
        EXPECT_EQ(camsim.statusNumber("watching"), 1);
        EXPECT_EQ(camsim.statusNumber("encoding"), 1);
    }
    EXPECT_TRUE(eventually([&] { return camsim.statusNumber("watching") == 0; }));
    EXPECT_TRUE(eventually([&] { return camsim.statusNumber("encoding") == 0; }));
}
