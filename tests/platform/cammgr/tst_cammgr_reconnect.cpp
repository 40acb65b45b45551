#include "tests/platform/cammgr/camsim_player.h"
#include "tests/platform/cammgr/media_probe.h"
#include "tests/platform/cammgr/temporary_folder.h"
#include "tests/platform/cammgr/test_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

using testing::Pair;

namespace {

/// One camera whose sub stream plays. Nobody but the first start asks for it.
class Reconnect : public testing::Test
{
protected:
    void play(uintptr_t window = 0)
    {
        ASSERT_TRUE(m_player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
        m_player.order(subPath, window);
        ASSERT_TRUE(waitForPlaying());
    }
    bool waitForPlaying()
    {
        return waitUntil([this] { return RtspPlayer_IsPlaying(m_player) != 0; });
    }
    bool waitForLoss()
    {
        return waitUntil([this] { return RtspPlayer_IsPlaying(m_player) == 0; });
    }
    bool waitForWriting()
    {
        return waitUntil([this] { return RtspPlayer_IsWriting(m_player) == CAMMGR_WRITING; });
    }
    void loseAndReturn()
    {
        ASSERT_TRUE(m_cameras.tell(0, "power off"));
        ASSERT_TRUE(waitForLoss());
        ASSERT_TRUE(m_cameras.tell(0, "power on"));
        ASSERT_TRUE(waitForPlaying());
    }

    Cameras m_cameras{{"--warm"}};
    Player m_player{m_cameras.camera().host()};
    TemporaryFolder m_folder;
};

void expectWhole(const std::string &clip)
{
    EXPECT_EQ(MediaProbe::complaints(clip), "") << clip;
    const std::vector<double> times = MediaProbe::videoTimes(clip);
    ASSERT_GT(times.size(), 5u) << clip;
    EXPECT_LT(times.front(), 0.5) << clip;
    for (size_t i = 1; i < times.size(); ++i) {
        EXPECT_GT(times[i], times[i - 1]) << clip;
        EXPECT_LT(times[i], times[i - 1] + 1) << clip;
    }
    EXPECT_EQ(MediaProbe::decodedFrames(clip), static_cast<int>(times.size())) << clip;
}

} // namespace

TEST_F(Reconnect, AStreamThatWasClosedComesBack)
{
    play();
    ASSERT_TRUE(m_cameras.tell(0, "drop"));
    ASSERT_TRUE(waitForLoss());
    EXPECT_TRUE(waitForPlaying());
    EXPECT_TRUE(m_player.waitForReason(CAMMGR_REASON_NONE));
    EXPECT_GT(RtspPlayer_GetVideoWidth(m_player), 0);
}

TEST_F(Reconnect, ACameraThatWasOffComesBack)
{
    play();
    ASSERT_TRUE(m_cameras.tell(0, "power off"));
    ASSERT_TRUE(waitForLoss());
    EXPECT_TRUE(m_player.waitForReason(CAMMGR_REASON_CONNECTION_REFUSED));
    ASSERT_TRUE(m_player.probeUntil(CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_UNREACHABLE));
    EXPECT_EQ(RtspPlayer_IsPlaying(m_player), 0);
    ASSERT_TRUE(m_cameras.tell(0, "power on"));
    EXPECT_TRUE(waitForPlaying());
    EXPECT_TRUE(m_player.waitForReason(CAMMGR_REASON_NONE));
    ASSERT_TRUE(m_player.probeUntil(CAMMGR_MSG_PROBE_OK, 0));
}

TEST_F(Reconnect, AStreamThatFroze)
{
    play();
    ASSERT_TRUE(m_cameras.tell(0, "freeze"));
    ASSERT_TRUE(waitForLoss());
    ASSERT_TRUE(m_cameras.tell(0, "thaw"));
    EXPECT_TRUE(waitForPlaying());
}

TEST_F(Reconnect, FiguresGoOn)
{
    play();
    RtspPlayerFigures before = {};
    before.size = sizeof before;
    EXPECT_TRUE(waitUntil([&] {
        return RtspPlayer_GetFigures(m_player, &before) == 0 && before.frames_received >= 10;
    }));
    loseAndReturn();
    RtspPlayerFigures after = {};
    after.size = sizeof after;
    EXPECT_TRUE(waitUntil([&] {
        return RtspPlayer_GetFigures(m_player, &after) == 0 &&
               after.frames_received > before.frames_received;
    }));
    EXPECT_GE(after.packets_received, before.packets_received);
}

TEST_F(Reconnect, ARecordingGoesOnInItsNextClip)
{
    play();
    const std::string base = m_folder.file("clip");
    ASSERT_EQ(RtspPlayer_BeginWriting(m_player, base.c_str(), 0), 0);
    ASSERT_TRUE(waitUntil([&] { return MediaProbe::duration(base + ".mp4") >= 2; }));
    loseAndReturn();
    ASSERT_TRUE(waitForWriting());
    EXPECT_LT(RtspPlayer_BeginWriting(m_player, base.c_str(), 0), 0) << "it runs";
    ASSERT_TRUE(waitUntil([&] { return MediaProbe::duration(base + "_0002.mp4") >= 2; }));
    EXPECT_EQ(RtspPlayer_EndWriting(m_player), 0);
    EXPECT_EQ(RtspPlayer_IsWriting(m_player), CAMMGR_WRITING_NONE);
    for (const char *clip : {".mp4", "_0002.mp4"}) {
        ASSERT_TRUE(waitUntil([&] { return MediaProbe::indexFirst(base + clip); }));
        expectWhole(base + clip);
        EXPECT_EQ(MediaProbe::codecs(base + clip), "h264 aac");
    }
    EXPECT_FALSE(std::filesystem::exists(base + "_0003.mp4"));
}

TEST_F(Reconnect, ACameraThatClosesAgainAndAgainIsRecorded)
{
    play();
    const std::string base = m_folder.file("clip");
    ASSERT_EQ(RtspPlayer_BeginWriting(m_player, base.c_str(), 0), 0);
    const std::vector<std::string> clips = {base + ".mp4", base + "_0002.mp4", base + "_0003.mp4"};
    for (const std::string &clip : clips) {
        ASSERT_TRUE(waitUntil([&] { return MediaProbe::duration(clip) >= 1.5; })) << clip;
        ASSERT_TRUE(m_cameras.tell(0, "drop"));
        ASSERT_TRUE(waitForLoss());
        EXPECT_NE(RtspPlayer_IsWriting(m_player), CAMMGR_WRITING_NONE);
        ASSERT_TRUE(waitForPlaying());
    }
    RtspPlayer_Stop(m_player);
    EXPECT_EQ(RtspPlayer_IsWriting(m_player), CAMMGR_WRITING_NONE);
    for (const std::string &clip : clips) {
        ASSERT_TRUE(waitUntil([&] { return MediaProbe::indexFirst(clip); }));
        expectWhole(clip);
    }
}

TEST_F(Reconnect, NotAfterARefusedLogin)
{
    play();
    ASSERT_TRUE(m_cameras.tell(0, "password other"));
    ASSERT_TRUE(m_cameras.tell(0, "drop"));
    ASSERT_TRUE(m_player.waitForReason(CAMMGR_REASON_LOGIN_REFUSED));
    const long before = m_cameras.statusNumber("rtsp_requests");
    EXPECT_FALSE(
        waitUntil([&] { return m_cameras.statusNumber("rtsp_requests") > before; }, 1500ms));
    EXPECT_LE(m_cameras.statusNumber("wrong_logins"), 1);
}

TEST_F(Reconnect, NotAfterStop)
{
    play();
    ASSERT_TRUE(m_cameras.tell(0, "power off"));
    ASSERT_TRUE(m_player.waitForReason(CAMMGR_REASON_CONNECTION_REFUSED));
    RtspPlayer_Stop(m_player);
    ASSERT_TRUE(m_cameras.tell(0, "power on"));
    const long before = m_cameras.statusNumber("rtsp_requests");
    EXPECT_FALSE(
        waitUntil([&] { return m_cameras.statusNumber("rtsp_requests") > before; }, 1500ms));
    EXPECT_EQ(RtspPlayer_IsPlaying(m_player), 0);
}

TEST_F(Reconnect, ClientThatPlaysOnEachReportDisturbsNothing)
{
    play();
    ASSERT_TRUE(m_cameras.tell(0, "refuse"));
    ASSERT_TRUE(m_cameras.tell(0, "drop"));
    ASSERT_TRUE(m_player.waitForReason(CAMMGR_REASON_CONNECTION_REFUSED));
    for (int i = 0; i < 50; ++i)
        EXPECT_EQ(RtspPlayer_Play(m_player), 0);
    ASSERT_TRUE(m_cameras.tell(0, "listen"));
    EXPECT_TRUE(waitUntil([&] {
        RtspPlayer_Play(m_player);
        return RtspPlayer_IsPlaying(m_player) != 0;
    }));
    EXPECT_EQ(m_cameras.statusNumber("watching"), 1);
}

TEST_F(Reconnect, TheLastPictureStaysOnTheWindow)
{
    TestWindow window(320, 180);
    if (!window.exists())
        GTEST_SKIP() << "no X display";
    play(window.id());
    ASSERT_TRUE(waitUntil([&] { return window.grab().white == 0; }));
    ASSERT_TRUE(m_cameras.tell(0, "power off"));
    ASSERT_TRUE(m_player.waitForReason(CAMMGR_REASON_CONNECTION_REFUSED));
    const TestWindow::Picture last = window.grab();
    EXPECT_EQ(last.white, 0u);
    EXPECT_LT(last.black, 320u * 180 / 2);
    // Also when the window is laid out anew.
    window.resize(400, 225);
    EXPECT_TRUE(waitUntil([&] { return window.grab().width == 400 && window.grab().white == 0; }));
    EXPECT_LT(window.grab().black, 400u * 225 / 2);
    RtspPlayerFigures figures = {};
    figures.size = sizeof figures;
    EXPECT_TRUE(waitUntil([&] {
        return RtspPlayer_GetFigures(m_player, &figures) == 0 && figures.picture_age > 500;
    }));
    ASSERT_TRUE(m_cameras.tell(0, "power on"));
    ASSERT_TRUE(waitForPlaying());
    const auto shown = window.grab().sum;
    EXPECT_TRUE(waitUntil([&] { return window.grab().sum != shown; }));
    ASSERT_EQ(RtspPlayer_GetFigures(m_player, &figures), 0);
    EXPECT_LT(figures.picture_age, 2000);
}
