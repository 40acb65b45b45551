#include "platform/cammgr/cammgr.h"

#include "camsim/camsim_process.h"
#include "tests/platform/cammgr/player_messages.h"
#include "tests/platform/cammgr/process_figures.h"
#include "tests/platform/cammgr/wait_until.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>

using zelvaro::test::CamsimProcess;
using namespace std::chrono_literals;

namespace {

constexpr int cameraCount = 4;
constexpr int steps = 200;

/// How long to go on at least.
std::chrono::seconds testDuration()
{
    const char *seconds = std::getenv("ZELVARO_SOAK_SECONDS");
    return std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
}

class Soak : public testing::Test
{
protected:
    void SetUp() override
    {
        for (int i = 0; i < cameraCount; ++i)
            m_players[i] = RtspPlayer_Create(m_cameras.camera(i).host().c_str(), "admin", "camsim",
                                             &PlayerMessages::callback, &m_messages[i]);
    }
    void TearDown() override
    {
        for (RtspPlayer *player : m_players) {
            RtspPlayer_Stop(player);
            RtspPlayer_DeleteSync(player);
        }
    }

    /// Plays or stops one of the cameras, whichever it does not do yet.
    void step()
    {
        const int which = pick(cameraCount);
        RtspPlayer *player = m_players[which];
        RtspPlayer_TickAlive(player);
        EXPECT_TRUE(m_messages[static_cast<size_t>(which)].next());
        if (m_isOn[which]) {
            RtspPlayer_Stop(player);
        } else {
            RtspPlayer_SetupP2PliveStream(player, pick(2) ? "/live/1/h264.sdp" : "/live/0/h264.sdp",
                                          0);
            RtspPlayer_Play(player);
            // Half of them are stopped before the first frame. The others play for as long as they
            // do not, as a client does.
            if (pick(2)) {
                EXPECT_TRUE(waitUntil([&] {
                    RtspPlayer_Play(player);
                    return RtspPlayer_IsPlaying(player) != 0;
                }));
            }
        }
        m_isOn[which] = !m_isOn[which];
    }

    /// Everything stopped, and the clean-up behind it done.
    ProcessFigures quiet()
    {
        for (RtspPlayer *player : m_players)
            RtspPlayer_Stop(player);
        m_isOn = {};
        EXPECT_TRUE(waitUntil([&] {
            long watching = 0;
            for (int i = 0; i < cameraCount; ++i)
                watching += m_cameras.statusNumber("watching", i);
            return watching == 0;
        }));
        ProcessFigures last = ProcessFigures::now();
        // Threads and handles go a moment after the streams.
        auto lastChange = std::chrono::steady_clock::now();
        waitUntil(
            [&] {
                const auto now = std::chrono::steady_clock::now();
                const ProcessFigures figures = ProcessFigures::now();
                if (figures.threads != last.threads || figures.handles != last.handles)
                    lastChange = now;
                last = figures;
                return now - lastChange > 100ms;
            },
            10s);
        return last;
    }

private:
    int pick(int count) { return std::uniform_int_distribution(0, count - 1)(m_random); }

    CamsimProcess m_cameras{{"--canned", "--count", std::to_string(cameraCount)}};
    std::array<PlayerMessages, cameraCount> m_messages;
    std::array<RtspPlayer *, cameraCount> m_players{};
    std::array<bool, cameraCount> m_isOn{};
    std::mt19937 m_random{20180813};
};

TEST_F(Soak, PlayingAndStoppingInAnyOrderLeavesNothingBehind)
{
    constexpr int warmUp = 10;
    for (int i = 0; i < warmUp; ++i)
        step();
    const ProcessFigures before = quiet();
    const auto begin = std::chrono::steady_clock::now();
    for (int i = warmUp; i < steps || std::chrono::steady_clock::now() - begin < testDuration();
         ++i)
        step();
    // Idle pool threads keep some memory until they end by themselves. What grows with the number
    // of streams would be there for good.
    constexpr size_t allowance = 1024 * 1024;
    ProcessFigures after = quiet();
    const bool isBack = waitUntil(
        [&] {
            after = ProcessFigures::now();
            return after.threads <= before.threads && after.handles <= before.handles &&
                   after.heapBytes <= before.heapBytes + allowance;
        },
        60s);
    EXPECT_TRUE(isBack) << "threads " << before.threads << " -> " << after.threads << ", handles "
                        << before.handles << " -> " << after.handles << ", heap "
                        << before.heapBytes << " -> " << after.heapBytes;
    RecordProperty("heapGrowthKilobytes",
                   (static_cast<int>(after.heapBytes) - static_cast<int>(before.heapBytes)) / 1024);
}

} // namespace
