#include "platform/cammgr/cammgr.h"

#include "camsim/camsim_process.h"
#include "tests/platform/cammgr/player_messages.h"
#include "tests/platform/cammgr/temporary_folder.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

using zelvaro::test::CamsimProcess;
using namespace std::chrono_literals;

namespace {

constexpr int lockAfter = 5;
constexpr long mostWrong = 3; // in half an hour

/// All that a client does with a camera, again and again, with a password that is wrong.
void pester(const CamsimProcess &camsim, const std::string &host, std::chrono::seconds duration)
{
    PlayerMessages messages;
    TemporaryFolder folder;
    RtspPlayer *player = RtspPlayer_Create(host.c_str(), camsim.camera().user.c_str(), "wrong",
                                           &PlayerMessages::callback, &messages);
    RtspPlayer_SetupP2PliveStream(player, "/live/0/h264.sdp", 0);
    const auto end = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < end) {
        RtspPlayer_TickAlive(player);
        for (int i = 0; i < 5; ++i)
            RtspPlayer_Play(player);
        RtspPlayer_Snapshot(player, folder.file("still.jpg").c_str());
        RtspPlayer_FetchStill(player, folder.file("fetched.jpg").c_str());
        AudioUpload_Play(player);
        messages.next(10s);
        AudioUpload_Stop(player);
        RtspPlayer_Stop(player);
    }
    RtspPlayer_DeleteSync(player);
}

/// Whether the right login still opens the camera.
bool letsIn(const CamsimProcess &camsim)
{
    PlayerMessages messages;
    const auto &camera = camsim.camera();
    RtspPlayer *player =
        RtspPlayer_Create(camera.uid.c_str(), camera.user.c_str(), camera.password.c_str(),
                          &PlayerMessages::callback, &messages);
    RtspPlayer_TickAlive(player);
    const auto message = messages.next();
    RtspPlayer_DeleteSync(player);
    return message && message->kind == CAMMGR_MSG_PROBE_OK;
}

class AccountLock : public testing::TestWithParam<std::vector<std::string>>
{
};

} // namespace

TEST_P(AccountLock, AWrongPasswordIsTriedThreeTimesInAll)
{
    std::vector<std::string> arguments = {"--lock-after", std::to_string(lockAfter), "--sub-size",
                                          "320x180"};
    arguments.insert(arguments.end(), GetParam().begin(), GetParam().end());
    CamsimProcess camsim(arguments);
    g_setenv("ZELVARO_DISCOVERY_TARGETS", camsim.camera().discovery.c_str(), TRUE);
    g_setenv("ZELVARO_DISCOVERY_MULTICAST", "0", TRUE);
    // Longer than a probe, a second one and what follows them take.
    pester(camsim, camsim.camera().uid, 12s);
    EXPECT_GE(camsim.statusNumber("wrong_logins"), 1);
    EXPECT_LE(camsim.statusNumber("wrong_logins"), mostWrong);
    EXPECT_EQ(camsim.statusNumber("locked"), 0);
    EXPECT_TRUE(letsIn(camsim));
}

INSTANTIATE_TEST_SUITE_P(
    Cameras, AccountLock,
    testing::Values(std::vector<std::string>{}, std::vector<std::string>{"--rtsp-login", "sha256"},
                    std::vector<std::string>{"--alt-paths"},
                    std::vector<std::string>{"--alt-paths", "--onvif-login", "token"}));
