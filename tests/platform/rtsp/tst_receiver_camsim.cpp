#include "camsim/camsim_process.h"
#include "tests/platform/rtsp/viewer.h"

#include <gtest/gtest.h>

#include <chrono>

using rtsp::StreamEnd;
using rtsp::StreamRequest;

namespace {

using namespace std::chrono_literals;

/// One simulated camera and a viewer of its sub stream.
class CamsimTest : public testing::Test
{
protected:
    explicit CamsimTest(const std::vector<std::string> &arguments = {"--warm"})
        : m_camsim(arguments)
    {
    }

    StreamRequest request(const std::string &password = {}) const
    {
        const auto &camera = m_camsim.camera();
        return {.url = camera.subUrl,
                .username = camera.user,
                .password = password.empty() ? camera.password : password};
    }

    zelvaro::test::CamsimProcess m_camsim;
};

class CamsimUdpTest : public CamsimTest
{
protected:
    CamsimUdpTest() : CamsimTest({"--warm", "--transport", "udp"}) {}
};

class CamsimSessionTest : public CamsimTest
{
protected:
    CamsimSessionTest() : CamsimTest({"--warm", "--session-timeout", "3"}) {}
};

TEST_F(CamsimTest, PlaysPictureAndSound)
{
    Viewer viewer(request());
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(30)) << viewer.text();
    EXPECT_TRUE(viewer.hasAudio());
    EXPECT_GT(viewer.sounds(), 10);
    EXPECT_EQ(viewer.playCount(), 1);
    EXPECT_FALSE(viewer.receiver().isUdp());
}

TEST_F(CamsimUdpTest, PlaysOverUdp)
{
    Viewer viewer(request());
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(30)) << viewer.text();
    EXPECT_GT(viewer.sounds(), 10);
    EXPECT_TRUE(viewer.receiver().isUdp());
}

TEST_F(CamsimTest, AWrongPasswordIsRefused)
{
    Viewer viewer(request("wrong"));
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
}

TEST_F(CamsimTest, AnUnknownPathIsNotFound)
{
    StreamRequest unknown = request();
    unknown.url += "x";
    Viewer viewer(unknown);
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::NotFound);
}

TEST_F(CamsimTest, ADroppedConnectionIsClosed)
{
    Viewer viewer(request());
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    ASSERT_TRUE(m_camsim.tell(0, "drop"));
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Closed);
}

TEST_F(CamsimTest, AFrozenCameraStallsAndIsClosedAtOnce)
{
    Viewer viewer(request());
    Viewer impatient(request());
    viewer.start();
    impatient.start();
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    ASSERT_TRUE(impatient.waitForFrames(10)) << impatient.text();
    ASSERT_TRUE(m_camsim.tell(0, "freeze"));
    const auto begin = std::chrono::steady_clock::now();
    impatient.close();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 50ms);
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Stalled);
}

TEST_F(CamsimTest, HalfAnAnswerAndSilenceFails)
{
    ASSERT_TRUE(m_camsim.tell(0, "half-answer"));
    Viewer viewer(request());
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Failed);
}

TEST_F(CamsimSessionTest, TheSessionStaysAlive)
{
    Viewer viewer(request());
    viewer.start();
    // 8 s at 15 frames a second.
    EXPECT_TRUE(viewer.waitForFrames(120)) << viewer.text();
    EXPECT_EQ(viewer.ends(), 0);
}

/// Plays some frames of a camera with these options.
void playWith(std::vector<std::string> arguments, bool withSound = true)
{
    arguments.insert(arguments.end(), {"--sub-size", "320x180"});
    zelvaro::test::CamsimProcess camsim(arguments);
    const auto &camera = camsim.camera();
    Viewer viewer({.url = camera.subUrl, .username = camera.user, .password = camera.password});
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(15)) << arguments[1] << viewer.text();
    EXPECT_TRUE(!withSound || viewer.waitForSounds(3)) << arguments[1];
    EXPECT_EQ(viewer.ends(), 0);
    EXPECT_EQ(camsim.statusNumber("wrong_logins"), 0);
}

TEST(CamsimOptions, EachCodecOfThePicturePlays)
{
    playWith({"--codec", "h265"});
    playWith({"--codec", "mjpeg"});
    playWith({"--profile", "main"});
    playWith({"--profile", "high", "--b-frames", "2"});
}

TEST(CamsimOptions, EachCodecOfTheSoundPlays)
{
    for (const char *codec : {"pcma", "g726", "aac", "latm", "l16", "opus"})
        playWith({"--audio", codec});
}

TEST(CamsimOptions, EachStrictLoginIsMetAtTheFirstTry)
{
    for (const char *login : {"any", "digest", "qop", "sha256"})
        playWith({"--rtsp-login", login, "--lock-after", "1"});
}

TEST(CamsimOptions, MarkersThatLieSegmentsAndALateFirstPacketDoNoHarm)
{
    for (const char *markers : {"slices", "sets", "never"})
        playWith({"--markers", markers});
    playWith({"--nagle"});
    playWith({"--first-packet-after", "6"});
}

TEST(CamsimOptions, WithoutGetParameterTheSessionStaysAlive)
{
    zelvaro::test::CamsimProcess camsim(
        {"--no-get-parameter", "--session-timeout", "3", "--sub-size", "320x180"});
    const auto &camera = camsim.camera();
    Viewer viewer({.url = camera.subUrl, .username = camera.user, .password = camera.password});
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(120)) << viewer.text(); // 8 s
    EXPECT_EQ(viewer.ends(), 0);
}

TEST_F(CamsimTest, APacketThatStopsInItsMiddleStallsOneViewerOnly)
{
    Viewer viewer(request());
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    ASSERT_TRUE(m_camsim.tell(0, "half-packet"));
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Stalled);
    Viewer next(request());
    next.start();
    EXPECT_TRUE(next.waitForFrames(10)) << next.text();
}

TEST_F(CamsimTest, PlaysOverAndOver)
{
    for (int i = 0; i < 20; ++i) {
        Viewer viewer(request());
        viewer.start();
        ASSERT_TRUE(viewer.waitForFrames(1)) << viewer.text();
    }
}

} // namespace
