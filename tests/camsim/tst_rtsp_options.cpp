#include "camsim/camsim_process.h"
#include "camsim/message_splitter.h"
#include "tests/camsim/peer.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace camsim::test;
using camsim::MessageSplitter;
using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

RawRtsp connectTo(const CamsimProcess &camsim, const std::string &password = "camsim")
{
    const SimulatedCamera &camera = camsim.camera();
    return {camera.address, camera.rtspPort, "/live/1/h264.sdp", camera.user, password};
}

/// What ffprobe tells of the sub stream.
std::string probed(const CamsimProcess &camsim, const std::string &entries)
{
    const SimulatedCamera &camera = camsim.camera();
    return run("ffprobe -v error -rtsp_transport tcp -show_entries " + entries +
               " -of default=nw=1 '" + camera.urlWithLogin(camera.subUrl) + "'")
        .output;
}

bool has(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

/// The RTP packets of the picture that came after PLAY, at least so many.
std::vector<std::string> picturePackets(RawRtsp &client, std::size_t count)
{
    std::vector<std::string> packets;
    client.connection().readUntil([&](const std::string &received) {
        packets.clear();
        MessageSplitter splitter([&](MessageSplitter::Kind kind, std::string unit) {
            if (kind == MessageSplitter::Kind::Packet && unit[1] == 0)
                packets.push_back(unit.substr(4));
        });
        splitter.feed(received);
        return packets.size() >= count;
    });
    return packets;
}

bool hasMarker(const std::string &packet)
{
    return (packet[1] & 0x80) != 0;
}

int nalType(const std::string &packet)
{
    return packet[12] & 0x1F;
}

std::vector<std::string> played(const std::string &markers)
{
    const CamsimProcess camsim({"--markers", markers, "--sub-size", "320x180"});
    RawRtsp client = connectTo(camsim);
    EXPECT_TRUE(client.play());
    return picturePackets(client, 60);
}

} // namespace

TEST(RtspOptions, EachCodecOfThePictureIsKnownToOthers)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"--codec", "h265"}, "codec_name=hevc"},
        {{"--codec", "mjpeg"}, "codec_name=mjpeg"},
        {{"--profile", "main"}, "profile=Main"},
        {{"--profile", "high"}, "profile=High"}};
    for (const auto &[arguments, expected] : cases) {
        std::vector<std::string> all = {"--sub-size", "320x180", "--no-audio"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const CamsimProcess camsim(all);
        const std::string answer = probed(camsim, "stream=codec_name,profile");
        EXPECT_TRUE(has(answer, expected)) << answer;
    }
}

TEST(RtspOptions, BFramesComeInTheOrderOfDecoding)
{
    const CamsimProcess camsim({"--profile", "high", "--b-frames", "2", "--sub-size", "320x180"});
    const SimulatedCamera &camera = camsim.camera();
    const std::string answer =
        run("timeout 30 ffprobe -v error -rtsp_transport tcp -select_streams v -read_intervals "
            "%+2 -show_frames -show_entries frame=pict_type -of default=nw=1 '" +
            camera.urlWithLogin(camera.subUrl) + "'")
            .output;
    EXPECT_TRUE(has(answer, "pict_type=B\npict_type=B\npict_type=P")) << answer;
    EXPECT_FALSE(has(answer, "rror")) << answer;
    EXPECT_THROW(CamsimProcess({"--b-frames", "1"}), std::runtime_error);
}

TEST(RtspOptions, EachCodecOfTheSoundIsKnownToOthers)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"pcma", "pcm_alaw"}, {"g726", "adpcm_g726"}, {"aac", "aac"},
        {"latm", "aac"},      {"l16", "pcm_s16be"},   {"opus", "opus"}};
    for (const auto &[codec, expected] : cases) {
        const CamsimProcess camsim({"--audio", codec, "--sub-size", "320x180"});
        const std::string answer = probed(camsim, "stream=codec_name");
        EXPECT_TRUE(has(answer, "codec_name=" + expected)) << codec << answer;
        EXPECT_TRUE(has(answer, "codec_name=h264")) << codec << answer;
    }
}

TEST(RtspOptions, AStrictCameraOffersOneDigestOnly)
{
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"digest", ""}, {"qop", "qop=\"auth\""}, {"sha256", "algorithm=SHA-256, qop=\"auth\""}};
    for (const auto &[kind, expected] : cases) {
        CamsimProcess camsim({"--rtsp-login", kind, "--sub-size", "320x180"});
        RawRtsp basic = connectTo(camsim);
        const std::string refusal = basic.ask("DESCRIBE");
        EXPECT_TRUE(refusal.starts_with("RTSP/1.0 401")) << refusal;
        EXPECT_TRUE(has(refusal, "WWW-Authenticate: Digest realm=\"camsim\"")) << refusal;
        EXPECT_TRUE(has(refusal, expected)) << refusal;
        EXPECT_EQ(has(refusal, "qop"), kind != "digest") << refusal;
        EXPECT_FALSE(has(refusal, "Basic")) << refusal;
        EXPECT_EQ(camsim.statusNumber("wrong_logins"), 1);
        if (kind == "sha256")
            continue; // the peer knows MD5 only
        const std::string answer = probed(camsim, "stream=codec_name");
        EXPECT_TRUE(has(answer, "codec_name=h264")) << kind << answer;
        EXPECT_EQ(camsim.statusNumber("wrong_logins"), 1);
    }
}

TEST(RtspOptions, TheAccountIsLockedAtTheLastOfTheWrongLogins)
{
    CamsimProcess camsim({"--lock-after", "3", "--sub-size", "320x180"});
    const SimulatedCamera &camera = camsim.camera();
    EXPECT_TRUE(connectTo(camsim).ask("DESCRIBE").starts_with("RTSP/1.0 200"));
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(connectTo(camsim, "wrong").ask("DESCRIBE").starts_with("RTSP/1.0 401"));
    EXPECT_TRUE(connectTo(camsim).ask("DESCRIBE").starts_with("RTSP/1.0 200"));
    EXPECT_EQ(camsim.statusNumber("locked"), 0);
    // A command request counts as much.
    const std::string fetch = "curl -s -m 20 -o /dev/null -w '%{http_code}' http://127.0.0.1:" +
                              std::to_string(camera.httpPort) + "/form/getMotion -u admin:";
    EXPECT_EQ(run(fetch + "wrong").output, "401");
    EXPECT_EQ(camsim.statusNumber("wrong_logins"), 3);
    EXPECT_EQ(camsim.statusNumber("locked"), 1);
    EXPECT_TRUE(connectTo(camsim).ask("DESCRIBE").starts_with("RTSP/1.0 401"));
    EXPECT_EQ(run(fetch + camera.password).output, "401");
    EXPECT_EQ(camsim.statusNumber("wrong_logins"), 3);
    EXPECT_TRUE(camsim.tell(0, "unlock"));
    EXPECT_TRUE(connectTo(camsim).ask("DESCRIBE").starts_with("RTSP/1.0 200"));
}

TEST(RtspOptions, GetParameterMayBeMissing)
{
    const CamsimProcess camsim({"--no-get-parameter"});
    RawRtsp client = connectTo(camsim);
    const std::string options = client.ask("OPTIONS");
    EXPECT_TRUE(has(options, "Public: ")) << options;
    EXPECT_TRUE(has(options, "SET_PARAMETER")) << options;
    EXPECT_FALSE(has(options, " GET_PARAMETER")) << options;
    EXPECT_TRUE(client.ask("GET_PARAMETER").starts_with("RTSP/1.0 501"));
}

TEST(RtspOptions, TheFirstPacketMayComeLate)
{
    const CamsimProcess camsim({"--first-packet-after", "1.5", "--sub-size", "320x180"});
    RawRtsp client = connectTo(camsim);
    ASSERT_TRUE(client.play());
    const auto begin = Clock::now();
    ASSERT_TRUE(client.receivesData(1));
    EXPECT_GT(Clock::now() - begin, 1400ms);
}

TEST(RtspOptions, MarkersLie)
{
    int markers = 0;
    for (const std::string &packet : played("never"))
        markers += hasMarker(packet) ? 1 : 0;
    EXPECT_EQ(markers, 0);

    int sets = 0;
    for (const std::string &packet : played("sets")) {
        const bool isSet = nalType(packet) == 7 || nalType(packet) == 8;
        sets += isSet ? 1 : 0;
        EXPECT_TRUE(!isSet || hasMarker(packet));
    }
    EXPECT_GT(sets, 0);

    for (const std::string &packet : played("slices")) {
        const bool isFragment = nalType(packet) == 28;
        EXPECT_EQ(hasMarker(packet), !isFragment || (packet[13] & 0x40) != 0);
    }
}

TEST(RtspOptions, SegmentsMayBeThoseOfAnEthernet)
{
    const CamsimProcess camsim({"--nagle", "--sub-size", "320x180"});
    RawRtsp client = connectTo(camsim);
    ASSERT_TRUE(client.play());
    EXPECT_TRUE(client.receivesData(20'000));
    EXPECT_LE(client.connection().maximumSegment(), 1448);
}
