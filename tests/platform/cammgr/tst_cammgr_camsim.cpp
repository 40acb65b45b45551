#include "platform/cammgr/cammgr.h"

#include "tests/platform/cammgr/camsim_player.h"
#include "tests/support/tiny_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::HasSubstr;
using testing::StartsWith;
using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;
using namespace std::chrono_literals;

namespace {

TEST(CammgrWithCamera, ProbesACameraAtItsAddress)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host());
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    EXPECT_EQ(RtspPlayer_GetMode(player), 0);
}

TEST(CammgrWithCamera, AProbeRightAfterPlayTellsTheFirstPicture)
{
    Cameras cameras({"--warm"});
    Player player(cameras.camera().host());
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    for (const char *path : {subPath, mainPath}) {
        RtspPlayer_SetupP2PliveStream(player, path, 0);
        const auto begin = std::chrono::steady_clock::now();
        RtspPlayer_Play(player);
        EXPECT_EQ(RtspPlayer_IsPlaying(player), 0);
        const auto message = player.probe();
        ASSERT_TRUE(message);
        EXPECT_EQ(message->kind, CAMMGR_MSG_PROBE_OK);
        // Either there is a picture, or a slow machine took its time for it.
        if (std::chrono::steady_clock::now() - begin < 2900ms) {
            EXPECT_NE(RtspPlayer_IsPlaying(player), 0);
            EXPECT_GT(RtspPlayer_GetVideoWidth(player), 0);
        }
        ASSERT_TRUE(waitUntil([&] { return RtspPlayer_IsPlaying(player) != 0; }));
    }
}

TEST(CammgrWithCamera, AWrongPasswordIsRefusedUntilItIsRight)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host(), "later");
    const auto message = player.probe();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->kind, CAMMGR_MSG_PROBE_FAILED);
    EXPECT_EQ(message->value, CAMMGR_ERROR_REFUSED);
    ASSERT_TRUE(cameras.tell(0, "password later"));
    EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    ASSERT_TRUE(cameras.tell(0, "password other"));
    EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_REFUSED));
}

TEST(CammgrWithCamera, ARefusedLoginDoesNotPlayEither)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host(), "wrong");
    ASSERT_TRUE(player.probe());
    RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
    const long before = cameras.statusNumber("rtsp_requests");
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(RtspPlayer_Play(player), 0);
    const auto message = player.probe();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->value, CAMMGR_ERROR_REFUSED);
    EXPECT_EQ(cameras.statusNumber("rtsp_requests"), before + 2)
        << "one probe more, since a user set the stream up, and no stream";
    const auto remembered = player.probe();
    ASSERT_TRUE(remembered);
    EXPECT_EQ(remembered->value, CAMMGR_ERROR_REFUSED);
    EXPECT_EQ(cameras.statusNumber("rtsp_requests"), before + 2);
}

TEST(CammgrWithCamera, FaultyAnswersAreFailuresAndNothingElse)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host());
    for (const char *fault : {"huge-sdp", "half-answer close", "refuse"}) {
        SCOPED_TRACE(fault);
        ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
        ASSERT_TRUE(cameras.tell(0, "drop"));
        ASSERT_TRUE(cameras.tell(0, fault));
        EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_UNREACHABLE));
        ASSERT_TRUE(cameras.tell(0, "heal"));
    }
    EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
}

TEST(CammgrWithCamera, FindsACameraByItsUid)
{
    Cameras cameras({"--canned", "--count", "3"});
    for (const SimulatedCamera &camera : cameras.cameras()) {
        Player player(camera.uid);
        EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0)) << camera.uid;
        EXPECT_EQ(RtspPlayer_GetMode(player), 0);
    }
}

TEST(CammgrWithCamera, AUidThatNobodyHasIsUnreachable)
{
    Cameras cameras({"--canned"});
    Player player("00000000-0000-4000-8000-000000000000");
    const auto message = player.probe();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->kind, CAMMGR_MSG_PROBE_FAILED);
    EXPECT_EQ(message->value, CAMMGR_ERROR_UNREACHABLE);
}

TEST(CammgrWithCamera, FindsACameraThatMoved)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    ASSERT_TRUE(cameras.tell(0, "address 127.0.0.2"));
    EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_UNREACHABLE));
    EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    EXPECT_EQ(cameras.status()["address"], "127.0.0.2");
    RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
    EXPECT_TRUE(player.playUntilPictures());
}

TEST(CammgrWithCamera, PlaysBothStreamsAndStops)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host());
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    for (const auto &[path, width] : {std::pair{mainPath, 1280}, std::pair{subPath, 640}}) {
        EXPECT_EQ(RtspPlayer_SetupP2PliveStream(player, path, 0), 0);
        EXPECT_EQ(RtspPlayer_IsPlaying(player), 0) << "another path ends what plays";
        ASSERT_TRUE(player.playUntilPictures());
        EXPECT_NE(RtspPlayer_HasVideoStream(player), 0);
        EXPECT_EQ(RtspPlayer_GetVideoWidth(player), width);
        EXPECT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    }
    EXPECT_EQ(RtspPlayer_Stop(player), 0);
    EXPECT_EQ(RtspPlayer_IsPlaying(player), 0);
    EXPECT_TRUE(waitUntil([&] { return cameras.statusNumber("watching") == 0; }));
}

TEST(CammgrWithCamera, AStreamThatPlaysIsItsOwnProof)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().host());
    RtspPlayer_SetupP2PliveStream(player, subPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    ASSERT_TRUE(player.probe());
    const long requests = cameras.statusNumber("rtsp_requests");
    for (int i = 0; i < 20; ++i) {
        const auto message = player.probe();
        ASSERT_TRUE(message);
        EXPECT_EQ(message->kind, CAMMGR_MSG_PROBE_OK);
    }
    // The stream itself may keep its session alive meanwhile.
    EXPECT_LE(cameras.statusNumber("rtsp_requests"), requests + 5);
    EXPECT_TRUE(waitUntil([&] { return cameras.statusNumber("connections") == 1; }))
        << "the idle probe connection is given up";
}

TEST(CammgrWithCamera, PlaysACameraByItsUidWithoutAProbeBefore)
{
    Cameras cameras({"--canned"});
    Player player(cameras.camera().uid);
    RtspPlayer_SetupP2PliveStream(player, subPath, 0);
    EXPECT_TRUE(player.playUntilPictures());
}

TEST(CammgrWithCamera, ACameraWithOtherPathsIsPlayedByItsProfiles)
{
    Cameras cameras({"--canned", "--alt-paths"});
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    EXPECT_EQ(RtspPlayer_GetMode(player), 0);
    for (const auto &[path, width] : {std::pair{mainPath, 1280}, std::pair{subPath, 640}}) {
        RtspPlayer_SetupP2PliveStream(player, path, 0);
        ASSERT_TRUE(player.playUntilPictures());
        EXPECT_EQ(RtspPlayer_GetVideoWidth(player), width);
    }
}

TEST(CammgrWithCamera, AnyRefusalOfThePathLeadsToTheProfilesOnce)
{
    for (const char *status :
         {"400", "403", "405", "406", "451", "453", "454", "500", "503", "551"}) {
        SCOPED_TRACE(status);
        Cameras cameras({"--canned", "--alt-paths", "--unknown-path", status});
        Player player(cameras.camera().uid);
        ASSERT_TRUE(player.probe());
        ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
        RtspPlayer_SetupP2PliveStream(player, subPath, 0);
        ASSERT_TRUE(player.playUntilPictures());
        EXPECT_EQ(RtspPlayer_GetVideoWidth(player), 640);
    }
}

TEST(CammgrWithCamera, ACameraWithMedia2OnlyPlays)
{
    Cameras cameras({"--canned", "--alt-paths", "--onvif-media", "2"});
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    for (const auto &[path, width] : {std::pair{mainPath, 1280}, std::pair{subPath, 640}}) {
        RtspPlayer_SetupP2PliveStream(player, path, 0);
        ASSERT_TRUE(player.playUntilPictures());
        EXPECT_EQ(RtspPlayer_GetVideoWidth(player), width);
    }
}

TEST(CammgrWithCamera, ARefusalOfThePathInPlayLeadsToTheProfiles)
{
    for (const char *status : {"454", "501", "551"}) {
        SCOPED_TRACE(status);
        Cameras cameras({"--canned", "--alt-paths", "--unknown-path", status});
        Player player(cameras.camera().uid);
        RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
        ASSERT_TRUE(player.playUntilPictures());
        EXPECT_EQ(RtspPlayer_GetVideoWidth(player), 1280);
    }
}

TEST(CammgrWithCamera, FallsBackToTheProfilesInPlayToo)
{
    Cameras cameras({"--canned", "--alt-paths"});
    Player player(cameras.camera().uid);
    RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    EXPECT_EQ(RtspPlayer_GetVideoWidth(player), 1280);
}

TEST(CammgrWithCamera, WithoutOnvifACameraWithOtherPathsIsUnreachable)
{
    Cameras cameras({"--canned", "--alt-paths"});
    Player player(cameras.camera().host());
    const auto message = player.probe();
    ASSERT_TRUE(message);
    EXPECT_EQ(message->kind, CAMMGR_MSG_PROBE_FAILED);
}

TEST(CammgrWithCamera, AFullAddressPlaysItsOwnPath)
{
    Cameras cameras({"--canned", "--alt-paths"});
    Player player(cameras.camera().subUrl);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    EXPECT_EQ(RtspPlayer_GetVideoWidth(player), 640);
}

TEST(CammgrWithCamera, AsksForAKeyFrameWhenItStarts)
{
    Cameras cameras({"--warm", "--key-interval", "5"});
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    RtspPlayer_SetupP2PliveStream(player, subPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    EXPECT_TRUE(waitUntil([&] { return cameras.statusNumber("key_frame_requests") > 0; }));
}

std::string formRequest(const std::string &command)
{
    // "admin:camsim"
    return "GET /form/" + command + " HTTP/1.1\r\nAuthorization: Basic YWRtaW46Y2Ftc2lt\r\n\r\n";
}

int issue(RtspPlayer *player, const std::vector<std::string> &requests)
{
    std::vector<const char *> texts;
    for (const std::string &request : requests)
        texts.push_back(request.c_str());
    return RtspPlayer_Issue_P2PConf_URLCMDs(player, texts.data(), static_cast<int>(texts.size()));
}

TEST(CammgrWithCamera, CarriesCommandsInOrder)
{
    Cameras cameras({"--canned", "--count", "2"});
    Player player(cameras.camera(1).uid);
    ASSERT_EQ(issue(player, {formRequest("getMotion?WINDOW=1"), formRequest("getMotion?WINDOW=2"),
                             formRequest("noSuchCommand")}),
              0);
    const auto message = player.messages().nextOf(CAMMGR_MSG_COMMAND_REPLIES);
    ASSERT_TRUE(message);
    ASSERT_EQ(message->texts.size(), 3u);
    EXPECT_THAT(message->texts[0], StartsWith("000 Success\n"));
    EXPECT_THAT(message->texts[0], HasSubstr("WINDOW=1\n"));
    EXPECT_THAT(message->texts[1], HasSubstr("WINDOW=2\n"));
    EXPECT_THAT(message->texts[2], testing::Not(StartsWith("000 Success")));
    EXPECT_EQ(cameras.statusNumber("commands", 0), 0) << "the other camera";
    EXPECT_GT(cameras.statusNumber("commands", 1), 0);
}

TEST(CammgrWithCamera, CarriesCommandsToTheWebPagesWhereverOnvifIs)
{
    Cameras cameras({"--canned", "--onvif-port", "0"});
    ASSERT_NE(cameras.camera().onvifPort, cameras.camera().httpPort);
    Player player(cameras.camera().uid);
    ASSERT_EQ(issue(player, {formRequest("getMotion?WINDOW=1")}), 0);
    const auto message = player.messages().nextOf(CAMMGR_MSG_COMMAND_REPLIES);
    ASSERT_TRUE(message);
    ASSERT_EQ(message->texts.size(), 1u);
    EXPECT_THAT(message->texts[0], StartsWith("000 Success\n"));
}

TEST(CammgrWithCamera, ASilentCameraFailsTheWholeBatchInTime)
{
    Cameras cameras({"--canned"});
    ASSERT_TRUE(cameras.tell(0, "command-silent"));
    Player player(cameras.camera().uid);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(issue(player, std::vector<std::string>(4, formRequest("getMotion?WINDOW=1"))), 0);
    const auto message = player.messages().nextOf(CAMMGR_MSG_COMMAND_REPLIES);
    ASSERT_TRUE(message);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s) << "15 s on an idle machine";
    ASSERT_EQ(message->texts.size(), 4u);
    for (const std::string &text : message->texts)
        EXPECT_THAT(text, testing::Not(StartsWith("000 Success")));
}

TEST(CammgrWithCamera, TheCameraHearsTheMicrophone)
{
    Cameras cameras({"--canned"});
    g_setenv("ZELVARO_TALKBACK_SOURCE", "audiotestsrc is-live=true wave=sine volume=0.8", TRUE);
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    for (int round = 0; round < 3; ++round) {
        const long before = cameras.statusNumber("back_channel_packets");
        EXPECT_EQ(AudioUpload_Play(player), 0);
        EXPECT_NE(AudioUpload_IsPlaying(player), 0);
        ASSERT_TRUE(
            waitUntil([&] { return cameras.statusNumber("back_channel_packets") > before + 10; }));
        // 20 ms of G.711 in each packet.
        const auto heard = cameras.status();
        EXPECT_EQ(std::stol(heard.at("back_channel_bytes")),
                  160 * std::stol(heard.at("back_channel_packets")));
        EXPECT_NE(AudioUpload_IsPlaying(player), 0);
        EXPECT_EQ(AudioUpload_Stop(player), 0);
        EXPECT_EQ(AudioUpload_IsPlaying(player), 0);
    }
}

TEST(CammgrWithCamera, TalkBackIsPacedByTheClock)
{
    Cameras cameras({"--canned"});
    // A source that gives all it has at once.
    g_setenv("ZELVARO_TALKBACK_SOURCE", "audiotestsrc is-live=false", TRUE);
    Player player(cameras.camera().host());
    AudioUpload_Play(player);
    ASSERT_TRUE(waitUntil([&] { return cameras.statusNumber("back_channel_packets") > 0; }));
    const auto begin = std::chrono::steady_clock::now();
    const long first = cameras.statusNumber("back_channel_packets");
    ASSERT_TRUE(
        waitUntil([&] { return cameras.statusNumber("back_channel_packets") > first + 100; }));
    EXPECT_GT(std::chrono::steady_clock::now() - begin, 1500ms) << "2 s of sound";
}

TEST(CammgrWithCamera, TalkBackEndsWithTheStream)
{
    Cameras cameras({"--canned"});
    g_setenv("ZELVARO_TALKBACK_SOURCE", "audiotestsrc is-live=true", TRUE);
    Player player(cameras.camera().host());
    AudioUpload_Play(player);
    EXPECT_NE(AudioUpload_IsPlaying(player), 0);
    RtspPlayer_Stop(player);
    EXPECT_EQ(AudioUpload_IsPlaying(player), 0);
}

TEST(CammgrWithCamera, WithoutBackChannelOrMicrophoneOnlyTalkBackEnds)
{
    for (const bool hasChannel : {false, true}) {
        Cameras cameras(hasChannel ? std::vector<std::string>{"--canned"}
                                   : std::vector<std::string>{"--canned", "--no-back-channel"});
        g_setenv("ZELVARO_TALKBACK_SOURCE",
                 hasChannel ? "no-such-element" : "audiotestsrc is-live=true", TRUE);
        Player player(cameras.camera().host());
        RtspPlayer_SetupP2PliveStream(player, subPath, 0);
        ASSERT_TRUE(player.playUntilPictures());
        EXPECT_EQ(AudioUpload_Play(player), 0);
        EXPECT_TRUE(waitUntil([&] { return AudioUpload_IsPlaying(player) == 0; }));
        EXPECT_NE(RtspPlayer_IsPlaying(player), 0);
        EXPECT_EQ(cameras.statusNumber("back_channel_packets"), 0);

        // Another request reports why and costs the camera nothing, until the user tries again.
        const int reason = hasChannel ? CAMMGR_TALK_NO_MICROPHONE : CAMMGR_TALK_NOT_TAKEN;
        const long requests = cameras.statusNumber("rtsp_requests");
        for (int i = 0; i < 10; ++i) {
            EXPECT_EQ(AudioUpload_Play(player), reason);
            EXPECT_EQ(AudioUpload_IsPlaying(player), 0);
        }
        EXPECT_LE(cameras.statusNumber("rtsp_requests"), requests + 1) << "a keep-alive at most";
        AudioUpload_Stop(player);
        EXPECT_EQ(AudioUpload_Play(player), 0);
        EXPECT_TRUE(waitUntil([&] { return AudioUpload_IsPlaying(player) == 0; }));
        EXPECT_EQ(AudioUpload_Play(player), reason);
    }
}

TEST(CammgrWithCamera, ATalkToNobodySaysSo)
{
    g_setenv("ZELVARO_TALKBACK_SOURCE", "audiotestsrc is-live=true", TRUE);
    Player player("127.0.0.1:" + std::to_string(closedPort()));
    EXPECT_EQ(AudioUpload_Play(player), 0);
    EXPECT_TRUE(waitUntil([&] { return AudioUpload_IsPlaying(player) == 0; }));
    EXPECT_EQ(AudioUpload_Play(player), CAMMGR_TALK_FAILED);
}

TEST(CammgrWithCamera, DeletesWhileEverythingIsUnderWay)
{
    Cameras cameras({"--canned", "--count", "2"});
    g_setenv("ZELVARO_TALKBACK_SOURCE", "audiotestsrc is-live=true", TRUE);
    for (int i = 0; i < 20; ++i) {
        PlayerMessages messages;
        const SimulatedCamera &camera = cameras.camera(static_cast<size_t>(i % 2));
        const std::string host = i % 4 < 2 ? camera.host() : camera.uid;
        RtspPlayer *player = RtspPlayer_Create(host.c_str(), "admin", "camsim",
                                               &PlayerMessages::callback, &messages);
        RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
        RtspPlayer_TickAlive(player);
        RtspPlayer_Play(player);
        AudioUpload_Play(player);
        issue(player, {formRequest("getMotion?WINDOW=1")});
        if (i % 3 == 0)
            ASSERT_TRUE(messages.next());
        if (i % 2) {
            EXPECT_EQ(RtspPlayer_DeleteSync(player), 0);
        } else {
            EXPECT_EQ(RtspPlayer_Delete(player), 0);
            EXPECT_TRUE(messages.nextOf(CAMMGR_MSG_DELETED));
        }
    }
}

} // namespace
