#include "tests/platform/cammgr/camsim_player.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/temporary_folder.h"
#include "tests/support/tiny_server.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <csignal>
#include <filesystem>

namespace {

/// How a still picture was answered: 0, negative, or 1 when it was not in time.
int fetch(Player &player, const std::string &path)
{
    if (RtspPlayer_FetchStill(player, path.c_str()) != 0)
        return 1;
    const auto message = player.messages().nextOf(CAMMGR_MSG_STILL, 15s);
    return message ? message->value : 1;
}

/// Width of a picture that decodes without a complaint; 0 of any other.
int widthOf(const std::string &path)
{
    return MediaProbe::complaints(path).empty() ? MediaProbe::width(path) : 0;
}

int filesIn(const std::string &folder)
{
    int count = 0;
    for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(folder))
        ++count;
    return count;
}

} // namespace

TEST(CammgrStills, AreThePictureThatTheCameraMakes)
{
    Cameras cameras({"--warm"});
    TemporaryFolder folder;
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    EXPECT_EQ(fetch(player, folder.file("still.jpeg")), 0);
    EXPECT_EQ(widthOf(folder.file("still.jpeg")), 640);
    EXPECT_EQ(filesIn(folder.path()), 1);
    EXPECT_EQ(cameras.statusNumber("snapshots"), 1);
    EXPECT_EQ(RtspPlayer_IsPlaying(player), 0);
    // Once more, in the place of the old one.
    EXPECT_EQ(fetch(player, folder.file("still.jpeg")), 0);
    EXPECT_EQ(cameras.statusNumber("snapshots"), 2);
}

TEST(CammgrStills, NeedNoProbeBefore)
{
    Cameras cameras({"--warm"});
    TemporaryFolder folder;
    Player player(cameras.camera().uid);
    EXPECT_EQ(fetch(player, folder.file("still.jpeg")), 0);
    EXPECT_EQ(widthOf(folder.file("still.jpeg")), 640);
}

TEST(CammgrStills, AreAKeyFrameOfACameraThatMakesNone)
{
    for (const char *codec : {"h264", "h265", "mjpeg"}) {
        Cameras cameras({"--warm", "--no-snapshots", "--codec", codec});
        TemporaryFolder folder;
        Player player(cameras.camera().host());
        ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
        EXPECT_EQ(fetch(player, folder.file("still.jpeg")), 0) << codec;
        EXPECT_EQ(widthOf(folder.file("still.jpeg")), 640) << codec;
        EXPECT_EQ(cameras.statusNumber("snapshots"), 0);
        EXPECT_TRUE(waitUntil([&] { return cameras.statusNumber("watching") == 0; })) << codec;
    }
}

TEST(CammgrStills, AreTheFrameOfAStreamThatPlays)
{
    Cameras cameras({"--warm"});
    TemporaryFolder folder;
    Player player(cameras.camera().host());
    RtspPlayer_SetupP2PliveStream(player, mainPath, 0);
    ASSERT_TRUE(player.playUntilPictures());
    EXPECT_EQ(fetch(player, folder.file("still.jpeg")), 0);
    EXPECT_EQ(widthOf(folder.file("still.jpeg")), 1280);
    EXPECT_EQ(cameras.statusNumber("snapshots"), 0);
    EXPECT_NE(RtspPlayer_IsPlaying(player), 0);
}

TEST(CammgrStills, OneAtATime)
{
    TinyServer silent([](TinyServer::Connection &connection) { connection.waitForEnd(); });
    TemporaryFolder folder;
    Player player(silent.address());
    EXPECT_LT(RtspPlayer_FetchStill(player, nullptr), 0);
    EXPECT_LT(RtspPlayer_FetchStill(player, ""), 0);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(RtspPlayer_FetchStill(player, folder.file("still.jpeg").c_str()), 0);
    EXPECT_LT(RtspPlayer_FetchStill(player, folder.file("still.jpeg").c_str()), 0);
    // A camera that hangs is waited for, but not for ever.
    const auto message = player.messages().nextOf(CAMMGR_MSG_STILL, 16s);
    ASSERT_TRUE(message);
    EXPECT_LT(message->value, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 15s);
    EXPECT_EQ(filesIn(folder.path()), 0);
    EXPECT_EQ(RtspPlayer_FetchStill(player, folder.file("still.jpeg").c_str()), 0);
}

TEST(CammgrStills, FailWhereTheFolderCannotBeWritten)
{
    Cameras cameras({"--warm"});
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    EXPECT_LT(fetch(player, "/proc/self/still.jpeg"), 0);
    TemporaryFolder folder;
    EXPECT_LT(fetch(player, folder.file("none/still.jpeg")), 0);
    EXPECT_EQ(filesIn(folder.path()), 0);
    // As a disk that is full after a few bytes.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit few{.rlim_cur = 1000, .rlim_max = before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &few), 0);
    EXPECT_LT(fetch(player, folder.file("still.jpeg")), 0);
    EXPECT_EQ(filesIn(folder.path()), 0);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(fetch(player, folder.file("still.jpeg")), 0);
}

TEST(CammgrStills, AreNoLoginThatLocksTheAccount)
{
    Cameras cameras({"--warm", "--lock-after", "5"});
    TemporaryFolder folder;
    Player player(cameras.camera().uid);
    ASSERT_TRUE(player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
    ASSERT_TRUE(cameras.tell(0, "password other"));
    for (int i = 0; i < 20; ++i)
        EXPECT_LT(fetch(player, folder.file("still.jpeg")), 0);
    EXPECT_EQ(filesIn(folder.path()), 0);
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(player.probe());
    EXPECT_LE(cameras.statusNumber("wrong_logins"), 3);
    EXPECT_EQ(cameras.statusNumber("locked"), 0);
}

TEST(CammgrStills, AreNotAnsweredAfterTheEnd)
{
    Cameras cameras({"--warm"});
    TemporaryFolder folder;
    PlayerMessages messages;
    for (int i = 0; i < 5; ++i) {
        RtspPlayer *player = RtspPlayer_Create(cameras.camera().host().c_str(), "admin", "camsim",
                                               &PlayerMessages::callback, &messages);
        EXPECT_EQ(RtspPlayer_FetchStill(player, folder.file("still.jpeg").c_str()), 0);
        EXPECT_EQ(RtspPlayer_DeleteSync(player), 0);
        EXPECT_EQ(messages.count(), 0);
    }
}
