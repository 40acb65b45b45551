#include "platform/cammgr/cammgr.h"

#include "camsim/camsim_process.h"
#include "tests/platform/cammgr/player_messages.h"
#include "tests/platform/cammgr/process_figures.h"
#include "tests/platform/cammgr/wait_until.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <vector>

using zelvaro::test::CamsimProcess;
using namespace std::chrono_literals;

namespace {

using Arguments = std::vector<std::string>;

/// How long to go on at least.
std::chrono::seconds testDuration()
{
    const char *seconds = std::getenv("ZELVARO_SOAK_SECONDS");
    return std::chrono::seconds(seconds ? std::atoi(seconds) : 0);
}

/// A camera and the player that plays it, or not.
struct Seat
{
    Seat(CamsimProcess &process, int number)
        : camsim(process)
        , index(number)
        , player(RtspPlayer_Create(process.camera(static_cast<size_t>(number)).host().c_str(),
                                   "admin", "camsim", &PlayerMessages::callback, &messages))
    {
    }
    ~Seat()
    {
        RtspPlayer_Stop(player);
        RtspPlayer_DeleteSync(player);
    }
    Seat(const Seat &) = delete;
    Seat &operator=(const Seat &) = delete;

    CamsimProcess &camsim;
    const int index;
    PlayerMessages messages;
    RtspPlayer *const player;
    bool isOn = false;
};

class Soak : public testing::Test
{
protected:
    /// One process of simulated cameras for each list of options.
    void add(const Arguments &options, int count)
    {
        Arguments all = {"--canned", "--count", std::to_string(count)};
        all.insert(all.end(), options.begin(), options.end());
        m_cameras.push_back(std::make_unique<CamsimProcess>(all));
        for (int i = 0; i < count; ++i)
            m_seats.push_back(std::make_unique<Seat>(*m_cameras.back(), i));
    }

    /// Plays or stops one of the cameras, whichever it does not do yet.
    void step()
    {
        Seat &seat = *m_seats[static_cast<size_t>(pick(static_cast<int>(m_seats.size())))];
        RtspPlayer *player = seat.player;
        RtspPlayer_TickAlive(player);
        EXPECT_TRUE(seat.messages.next());
        if (seat.isOn) {
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
        seat.isOn = !seat.isOn;
    }

    /// Everything stopped, and the clean-up behind it done.
    ProcessFigures quiet()
    {
        for (const auto &seat : m_seats) {
            RtspPlayer_Stop(seat->player);
            seat->isOn = false;
        }
        EXPECT_TRUE(waitUntil([&] {
            long watching = 0;
            for (const auto &seat : m_seats)
                watching += seat->camsim.statusNumber("watching", seat->index);
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

    /// Plays and stops so often, and for as long as testDuration(); nothing is left behind.
    void soak(int steps);

private:
    int pick(int count) { return std::uniform_int_distribution(0, count - 1)(m_random); }

    std::vector<std::unique_ptr<CamsimProcess>> m_cameras;
    std::vector<std::unique_ptr<Seat>> m_seats;
    std::mt19937 m_random{20180813};
};

void Soak::soak(int steps)
{
    // Each camera has been played, so that what is made once is there.
    const int warmUp = 4 * static_cast<int>(m_seats.size());
    for (int i = 0; i < warmUp; ++i)
        step();
    const ProcessFigures before = quiet();
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < steps || std::chrono::steady_clock::now() - begin < testDuration(); ++i)
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

TEST_F(Soak, PlayingAndStoppingInAnyOrderLeavesNothingBehind)
{
    add({}, 4);
    soak(200);
}

TEST_F(Soak, CamerasOfAllCodecsLeaveNothingBehind)
{
    // Small pictures: sixteen cameras share the machine with the test.
    const std::vector<Arguments> kinds = {
        {"--audio", "pcma"},
        {"--audio", "g726", "--profile", "main"},
        {"--audio", "aac", "--profile", "high", "--b-frames", "2"},
        {"--audio", "latm", "--codec", "h265"},
        {"--audio", "l16", "--codec", "mjpeg"},
        {"--audio", "opus", "--markers", "slices", "--rtsp-login", "sha256"},
        {"--codec", "h265", "--transport", "udp"},
        {"--no-get-parameter", "--session-timeout", "5", "--rtsp-login", "qop"}};
    for (Arguments kind : kinds) {
        kind.insert(kind.end(), {"--main-size", "320x180", "--sub-size", "160x96", "--main-fps",
                                 "15", "--key-interval", "0.5"});
        add(kind, 2);
    }
    // The usual run is a sample of it.
    soak(testDuration() > 0s ? 500 : 120);
}

} // namespace
