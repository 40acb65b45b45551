#include "platform/cammgr/stream_paths.h"

#include <gtest/gtest.h>

using cammgr::StreamPaths;

namespace {

const std::string mainPath = "/live/0/h264.sdp";
const std::string subPath = "/live/1/h264.sdp";
const base::Endpoint camera{.host = "cam.lan", .port = 8554, .tls = false};

onvif::CameraStreams profiles()
{
    return {.main = {.uri = "rtsp://cam.lan:8554/big", .profileToken = "P1"},
            .sub = {.uri = "rtsp://cam.lan:8554/small", .profileToken = "P2"}};
}

TEST(StreamPaths, TakesTheClientsPathsAtFirst)
{
    const StreamPaths paths("");
    EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/live/0/h264.sdp");
    EXPECT_EQ(paths.url(camera, subPath), "rtsp://cam.lan:8554/live/1/h264.sdp");
    EXPECT_EQ(paths.url(camera, "/other"), "rtsp://cam.lan:8554/other");
    EXPECT_TRUE(paths.hasMain());
}

TEST(StreamPaths, AFullAddressNamesItsStream)
{
    const StreamPaths paths("/Streaming/101?x=y");
    EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/Streaming/101?x=y");
    EXPECT_EQ(paths.url(camera, subPath), "rtsp://cam.lan:8554/Streaming/101?x=y");
}

TEST(StreamPaths, ProfilesTakeTheTwoPlacesOnlyWhenAskedTo)
{
    StreamPaths paths("");
    paths.useProfiles();
    EXPECT_FALSE(paths.usesProfiles()) << "there are none yet";
    paths.setProfiles(profiles());
    EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/live/0/h264.sdp");
    paths.useProfiles();
    EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/big");
    EXPECT_EQ(paths.url(camera, subPath), "rtsp://cam.lan:8554/small");
    paths.reset();
    EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/live/0/h264.sdp");
}

TEST(StreamPaths, ProfilesReplaceAFullAddressThatIsGone)
{
    StreamPaths paths("/old");
    paths.setProfiles(profiles());
    paths.useProfiles();
    EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/big");
}

TEST(StreamPaths, FindsTheProfileOfAStream)
{
    StreamPaths paths("");
    EXPECT_EQ(paths.profileToken(mainPath), "");
    paths.setProfiles(profiles());
    EXPECT_EQ(paths.profileToken(mainPath), "P1");
    EXPECT_EQ(paths.profileToken(subPath), "P2");
    EXPECT_EQ(paths.profileToken("/small"), "P2") << "by its path";

    StreamPaths fixed("/small");
    fixed.setProfiles(profiles());
    EXPECT_EQ(fixed.profileToken(mainPath), "P2");
}

TEST(StreamPaths, OneStreamServesForBothPlaces)
{
    StreamPaths paths("");
    EXPECT_TRUE(paths.markMissing(mainPath));
    EXPECT_FALSE(paths.hasMain());
    EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/live/1/h264.sdp");
    EXPECT_EQ(paths.url(camera, subPath), "rtsp://cam.lan:8554/live/1/h264.sdp");
}

TEST(StreamPaths, GivesUpWhenBothAreMissingAndStartsOver)
{
    for (const std::string &second : {mainPath, subPath}) {
        StreamPaths paths("");
        EXPECT_TRUE(paths.markMissing(mainPath));
        EXPECT_FALSE(paths.markMissing(second));
        EXPECT_TRUE(paths.hasMain());
        EXPECT_EQ(paths.url(camera, mainPath), "rtsp://cam.lan:8554/live/0/h264.sdp");
    }
}

TEST(StreamPaths, HasNothingElseForAPathOfItsOwn)
{
    StreamPaths paths("");
    EXPECT_FALSE(paths.markMissing("/other"));
    StreamPaths fixed("/fixed");
    EXPECT_FALSE(fixed.markMissing(mainPath));
}

} // namespace
