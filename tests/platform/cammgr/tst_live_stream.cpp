#include "platform/cammgr/live_stream.h"
#include "tests/platform/cammgr/rtsp_test_server.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/test_window.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <random>
#include <sys/socket.h>
#include <unistd.h>

using cammgr::LiveStream;
using cammgr::StreamEnd;
using cammgr::StreamRequest;

namespace {

StreamRequest requestFor(const std::string &url, uintptr_t window = 0)
{
    return {url, {}, {}, window};
}

/// A port on which nobody listens.
std::string deadUrl()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    bind(socket, reinterpret_cast<sockaddr *>(&address), sizeof address);
    socklen_t size = sizeof address;
    getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    const std::string url =
        "rtsp://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/live/0/h264.sdp";
    ::close(socket);
    return url;
}

} // namespace

TEST(LiveStream, PlaysWithoutAWindow)
{
    RtspTestServer server({RtspTestServer::testPicture(320, 240, 25, 25, true)});
    StreamListener listener;
    LiveStream stream(listener.callbacks());
    EXPECT_FALSE(stream.isActive());
    stream.start(requestFor(server.url()));
    EXPECT_TRUE(stream.isActive());
    ASSERT_TRUE(listener.waitForFirstFrame());
    EXPECT_TRUE(stream.isPlaying());
    EXPECT_TRUE(stream.hasVideo());
    EXPECT_TRUE(stream.hasAudio());
    EXPECT_EQ(stream.width(), 320);
    EXPECT_EQ(stream.height(), 240);
    EXPECT_TRUE(waitUntil([&] { return stream.frameRate() >= 20 && stream.frameRate() <= 30; }));
    EXPECT_GT(stream.bitRate(), 1000);
    EXPECT_EQ(listener.keyFrameWishes(), 1);

    stream.stop();
    EXPECT_FALSE(stream.isActive());
    EXPECT_FALSE(stream.isPlaying());
    EXPECT_EQ(stream.frameRate(), 0);
    EXPECT_EQ(stream.width(), 0);
    EXPECT_TRUE(listener.ends().empty());
    EXPECT_EQ(listener.firstFrames(), 1);
}

TEST(LiveStream, DrawsEachPictureOnItsWindow)
{
    TestWindow window(320, 240);
    if (!window.exists())
        GTEST_SKIP() << "no X display";
    RtspTestServer server({RtspTestServer::testPicture()});
    StreamListener listener;
    LiveStream stream(listener.callbacks());
    stream.start(requestFor(server.url(), window.id()));
    ASSERT_TRUE(listener.waitForFirstFrame());
    ASSERT_TRUE(waitUntil([&] { return window.grab().white == 0; })) << window.grab().white;
    const auto before = window.grab().sum;
    EXPECT_TRUE(waitUntil([&] { return window.grab().sum != before; }));
    stream.stop();
    const auto after = window.grab().sum;
    EXPECT_FALSE(waitUntil([&] { return window.grab().sum != after; }, 300ms));
}

TEST(LiveStream, NobodyListeningFails)
{
    StreamListener listener;
    LiveStream stream(listener.callbacks());
    stream.start(requestFor(deadUrl()));
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_EQ(listener.ends().front(), StreamEnd::Failed);
    EXPECT_FALSE(stream.isActive());
    EXPECT_EQ(listener.firstFrames(), 0);
}

TEST(LiveStream, WrongPasswordIsRefusedAndTheRightOnePlays)
{
    RtspTestServer server({RtspTestServer::testPicture(), GST_RTSP_LOWER_TRANS_TCP, "me", "mine"});
    StreamListener refused;
    LiveStream stream(refused.callbacks());
    stream.start({server.url(), "me", "yours", 0});
    ASSERT_TRUE(refused.waitForEnd());
    EXPECT_EQ(refused.ends().front(), StreamEnd::Refused);

    StreamListener accepted;
    LiveStream second(accepted.callbacks());
    second.start({server.url(), "me", "mine", 0});
    EXPECT_TRUE(accepted.waitForFirstFrame());
}

TEST(LiveStream, UnknownPathIsNotFound)
{
    RtspTestServer server({RtspTestServer::testPicture()});
    StreamListener listener;
    LiveStream stream(listener.callbacks());
    stream.start(requestFor(server.url() + "x"));
    ASSERT_TRUE(listener.waitForEnd());
    EXPECT_EQ(listener.ends().front(), StreamEnd::NotFound);
}

TEST(LiveStream, CameraThatHasOnlyUdpPlays)
{
    RtspTestServer server({RtspTestServer::testPicture(), GST_RTSP_LOWER_TRANS_UDP});
    StreamListener listener;
    LiveStream stream(listener.callbacks());
    stream.start(requestFor(server.url()));
    EXPECT_TRUE(listener.waitForFirstFrame());
    EXPECT_TRUE(listener.ends().empty());
}
