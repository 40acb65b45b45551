#include "tests/platform/cammgr/camsim_player.h"
#include "tests/support/tiny_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::Pair;

namespace {

void answerWith(TinyServer::Connection &connection, const std::string &description)
{
    while (!connection.readRequest().empty())
        connection.write("RTSP/1.0 200 OK\r\nContent-Type: application/sdp\r\nContent-Length: " +
                         std::to_string(description.size()) + "\r\n\r\n" + description);
}

const std::string vp8 = "v=0\r\no=- 1 1 IN IP4 127.0.0.1\r\ns=x\r\nt=0 0\r\n"
                        "m=video 0 RTP/AVP 96\r\na=rtpmap:96 VP8/90000\r\na=control:a\r\n";

} // namespace

TEST(CammgrReasons, ACameraThatCanBeShownHasNone)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host());
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_NONE, ""));
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_NONE, ""));
    RtspPlayer_SetupP2PliveStream(player, subPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_NONE, ""));
}

TEST(CammgrReasons, AHostWithoutAnAddressIsNotFound)
{
    // No name server knows a part of a name that is longer than 63 characters.
    const std::string host = std::string(70, 'a') + ".invalid";
    Player player(host);
    ASSERT_TRUE(player.probe());
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_HOST_NOT_FOUND, host));
    player.order(mainPath);
    EXPECT_FALSE(
        waitUntil([&] { return player.reason().first != CAMMGR_REASON_HOST_NOT_FOUND; }, 500ms));
}

TEST(CammgrReasons, AUidThatNobodyHasIsNotFound)
{
    Cameras cameras({"--canned"});
    const std::string uid = "12345678-0000-0000-0000-00000000abcd";
    Player player(uid);
    player.order(mainPath);
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_HOST_NOT_FOUND));
    EXPECT_EQ(player.reason().second, uid);
    ASSERT_TRUE(player.probe());
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_HOST_NOT_FOUND, uid));
}

TEST(CammgrReasons, ASilentHostDoesNotAnswer)
{
    TinyServer silent([](TinyServer::Connection &connection) { connection.waitForEnd(); });
    Player player(silent.address());
    ASSERT_TRUE(player.probe());
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_NO_ANSWER, silent.address()));
}

TEST(CammgrReasons, ARefusedLoginIsPausedInTheEnd)
{
    Cameras cameras({"--canned"});
    const std::string host = cameras.camera().host();
    Player player(host, "wrong");
    ASSERT_TRUE(player.probe());
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_LOGIN_REFUSED, host));
    for (int i = 0; i < 2; ++i) {
        RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
        ASSERT_TRUE(player.probe());
    }
    EXPECT_EQ(player.reason().first, CAMMGR_REASON_LOGIN_PAUSED);
    const int seconds = std::stoi(player.reason().second);
    EXPECT_GT(seconds, 25 * 60);
    EXPECT_LE(seconds, 30 * 60);
    ASSERT_TRUE(cameras.tell(0, "password wrong"));
    RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_NONE, ""));
}

TEST(CammgrReasons, ALoginThatIsRefusedInPlayIsTold)
{
    Cameras cameras({"--canned"});
    const std::string host = cameras.camera().host();
    Player player(host);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    ASSERT_TRUE(cameras.tell(0, "password other"));
    player.order(subPath);
    ASSERT_TRUE(player.waitForReason(CAMMGR_REASON_LOGIN_REFUSED));
    EXPECT_EQ(player.reason().second, host);
    RtspPlayer_Stop(player);
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_NONE)) << "nobody wants to see it";
}

TEST(CammgrReasons, APathThatNobodyKnowsIsTold)
{
    for (const char *status : {"404", "503"}) {
        Cameras cameras({"--canned", "--alt-paths", "--unknown-path", status});
        // Behind a port that was typed there is no other camera than that one.
        Player player("rtsp://" + cameras.camera().host() + "/elsewhere");
        ASSERT_TRUE(player.probe());
        EXPECT_THAT(player.reason(),
                    Pair(CAMMGR_REASON_NO_SUCH_PATH, std::string("/elsewhere ") + status));
        player.order(subPath);
        ASSERT_TRUE(player.waitForReason(CAMMGR_REASON_NO_SUCH_PATH));
    }
}

TEST(CammgrReasons, ADescriptionWithoutVideoIsTold)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host());
    ASSERT_TRUE(cameras.tell(0, "no-video on"));
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    player.order(subPath);
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_NO_VIDEO));
    ASSERT_TRUE(player.probe());
    EXPECT_THAT(player.reason(), Pair(CAMMGR_REASON_NO_VIDEO, "")) << "the probe is no picture";
    ASSERT_TRUE(cameras.tell(0, "no-video off"));
    ASSERT_TRUE(player.playUntilPictures());
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_NONE));
}

TEST(CammgrReasons, ACodecThatCannotBeShownIsNamed)
{
    TinyServer camera([](TinyServer::Connection &connection) { answerWith(connection, vp8); });
    Player player(camera.address());
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    player.order(mainPath);
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_CODEC_UNKNOWN));
    EXPECT_EQ(player.reason().second, "VP8");
}

TEST(CammgrReasons, AStreamThatEndsIsTold)
{
    Cameras cameras({"--canned"});
    const std::string host = cameras.camera().host();
    Player player(host);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    RtspPlayer_SetupP2PliveStream(player, subPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    ASSERT_TRUE(cameras.tell(0, "drop"));
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_STREAM_ENDED));
    EXPECT_EQ(player.reason().second, host);
    ASSERT_TRUE(player.playUntilPictures());
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_NONE));
    cameras.kill();
    EXPECT_TRUE(waitUntil([&] {
        RtspPlayer_Play(player);
        return player.reason().first == CAMMGR_REASON_CONNECTION_REFUSED;
    }));
}

TEST(CammgrReasons, AStreamWithoutPicturesIsTold)
{
    Cameras cameras({"--canned"});
    const std::string host = cameras.camera().host();
    Player player(host);
    RtspPlayer_SetupP2PliveStream(player, subPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    ASSERT_TRUE(cameras.tell(0, "freeze"));
    EXPECT_TRUE(player.waitForReason(CAMMGR_REASON_NO_PICTURES));
    EXPECT_EQ(player.reason().second, host);
}
