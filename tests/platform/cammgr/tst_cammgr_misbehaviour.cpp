#include "platform/cammgr/cammgr.h"

#include "camsim/camsim_process.h"
#include "tests/platform/cammgr/player_messages.h"
#include "tests/platform/cammgr/test_window.h"
#include "tests/platform/cammgr/wait_until.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <set>

using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int tileCount = 16;
constexpr int columns = 4;
constexpr int tileWidth = 320;
constexpr int tileHeight = 180;
/// The others keep their rate in every window of so many seconds.
constexpr int windowSeconds = 6;
constexpr double leastShare = 0.9;

/// What a camera does to its tile.
enum class Behaviour
{
    Good,
    Drops,
    Freezes,
    SendsGarbage,
    ChangesSize
};

Behaviour behaviourOf(int camera)
{
    if (camera < 4)
        return Behaviour::Drops;
    if (camera < 6)
        return Behaviour::Freezes;
    if (camera < 8)
        return Behaviour::SendsGarbage;
    return camera == 8 ? Behaviour::ChangesSize : Behaviour::Good;
}

/// Every camera misbehaves at least once in a round.
constexpr int roundSeconds = 24;

std::chrono::seconds testDuration()
{
    const char *seconds = std::getenv("ZELVARO_SOAK_SECONDS");
    return std::chrono::seconds(seconds ? std::max(std::atoi(seconds), roundSeconds)
                                        : roundSeconds);
}

/// One camera on its window, kept playing as a client does: play is called at every look at it as
/// long as it does not.
class Tile
{
public:
    Tile(const SimulatedCamera &camera, int position)
        : m_window(tileWidth, tileHeight, position % columns * tileWidth,
                   position / columns * tileHeight)
        , m_player(RtspPlayer_Create(camera.host().c_str(), camera.user.c_str(),
                                     camera.password.c_str(), &PlayerMessages::callback,
                                     &m_messages))
    {
        RtspPlayer_SetupP2PliveStream(m_player, "/live/1/h264.sdp", m_window.id());
        RtspPlayer_SetVolume(m_player, 0);
    }
    ~Tile()
    {
        RtspPlayer_Stop(m_player);
        RtspPlayer_DeleteSync(m_player);
    }
    Tile(const Tile &) = delete;
    Tile &operator=(const Tile &) = delete;

    bool hasWindow() const { return m_window.exists(); }
    bool isPlaying() const { return RtspPlayer_IsPlaying(m_player) != 0; }
    int frameRate() const { return RtspPlayer_GetVideoFrameRate(m_player); }
    int interruptions() const { return m_interruptions; }
    const std::set<int> &widths() const { return m_widths; }

    void look()
    {
        RtspPlayer_TickAlive(m_player);
        const bool plays = isPlaying();
        m_interruptions += m_played && !plays ? 1 : 0;
        m_played = plays;
        if (plays)
            m_widths.insert(RtspPlayer_GetVideoWidth(m_player));
        else
            RtspPlayer_Play(m_player);
    }

    /// Whether the window shows another picture than at the last call.
    bool hasNewPicture()
    {
        const auto picture = m_window.grab();
        const bool painted = picture.white + picture.black <
                             static_cast<unsigned long>(picture.width) * picture.height;
        return std::exchange(m_picture, picture.sum) != picture.sum && painted;
    }

private:
    TestWindow m_window;
    PlayerMessages m_messages;
    RtspPlayer *m_player;
    bool m_played = false;
    int m_interruptions = 0;
    std::set<int> m_widths;
    unsigned long m_picture = 0;
};

/// Of a camera that starts a stream again: DESCRIBE, two SETUP and PLAY.
constexpr long leastRequests = 4;

/// Frames that a camera sent and that its tile received, in one window of time.
struct Account
{
    long sentBefore = 0;
    long received = 0;
    int newPictures = 0;
};

class Misbehaviour : public testing::Test
{
protected:
    void SetUp() override
    {
        for (int i = 0; i < tileCount; ++i)
            m_tiles.push_back(std::make_unique<Tile>(m_cameras.camera(i), i));
        if (!m_tiles.front()->hasWindow())
            GTEST_SKIP() << "no X display";
    }

    bool allPlay()
    {
        bool all = true;
        for (const auto &tile : m_tiles) {
            tile->look();
            all = all && tile->isPlaying();
        }
        return all;
    }

    void misbehave(int second)
    {
        for (int i = 0; i < tileCount; ++i) {
            switch (behaviourOf(i)) {
            case Behaviour::Good:
                break;
            case Behaviour::Drops: // one of the four every other second
                if (second % 8 == 2 * i)
                    tell(i, "drop");
                break;
            case Behaviour::Freezes: // longer than a stream may be silent
                if (second % roundSeconds == 2 + i)
                    tell(i, "freeze");
                else if (second % roundSeconds == 10 + i)
                    tell(i, "thaw");
                break;
            case Behaviour::SendsGarbage:
                if (second % 16 == i - 4)
                    tell(i, "garbage on");
                else if (second % 16 == i + 4)
                    tell(i, "garbage off");
                break;
            case Behaviour::ChangesSize: {
                static constexpr std::array sizes = {"320x180", "240x136", "400x224", "320x240"};
                tell(i, std::string("resize ") + sizes[second % sizes.size()] + " sub");
                break;
            }
            }
        }
    }

    void heal()
    {
        for (int i = 0; i < tileCount; ++i)
            tell(i, "heal");
    }

    void openAccounts()
    {
        for (int i = 0; i < tileCount; ++i)
            m_accounts[i] = {.sentBefore = m_cameras.statusNumber("video_frames", i)};
    }

    void lookAtTiles()
    {
        for (int i = 0; i < tileCount; ++i) {
            m_accounts[i].received += m_tiles[i]->frameRate(); // of the last second
            if (behaviourOf(i) == Behaviour::Good)
                m_accounts[i].newPictures += m_tiles[i]->hasNewPicture() ? 1 : 0;
            m_tiles[i]->look();
        }
    }

    /// The good ones kept their rate.
    void closeAccounts(int second)
    {
        for (int i = 0; i < tileCount; ++i) {
            if (behaviourOf(i) != Behaviour::Good)
                continue;
            const Account &account = m_accounts[i];
            const long sent = m_cameras.statusNumber("video_frames", i) - account.sentBefore;
            EXPECT_GT(sent, 0) << "camera " << i << ", second " << second;
            EXPECT_GE(account.received, leastShare * sent)
                << "camera " << i << ", second " << second;
            EXPECT_GT(account.newPictures, 0) << "camera " << i << ", second " << second;
        }
    }

    /// Waits for a moment, which nobody signals.
    static void waitFor(Clock::time_point moment)
    {
        waitUntil([] { return false; }, moment - Clock::now());
    }

    const std::vector<std::unique_ptr<Tile>> &tiles() const { return m_tiles; }
    long requests(int camera) { return m_cameras.statusNumber("rtsp_requests", camera); }

private:
    void tell(int camera, const std::string &command)
    {
        EXPECT_TRUE(m_cameras.tell(camera, command)) << camera << ' ' << command;
    }

    CamsimProcess m_cameras{{"--canned", "--count", std::to_string(tileCount), "--sub-size",
                             "320x180", "--sub-fps", "15", "--sub-bitrate", "200000"}};
    std::vector<std::unique_ptr<Tile>> m_tiles;
    std::array<Account, tileCount> m_accounts;
};

TEST_F(Misbehaviour, OfSomeCamerasDoesNotTouchTheOthers)
{
    ASSERT_TRUE(waitUntil([this] { return allPlay(); }, 60s));

    std::array<long, tileCount> requestsBefore = {};
    for (int i = 0; i < tileCount; ++i)
        requestsBefore[i] = requests(i);
    const Clock::time_point begin = Clock::now();
    const auto seconds = static_cast<int>(testDuration() / 1s);
    for (int second = 0; second < seconds; ++second) {
        if (second % windowSeconds == 0)
            openAccounts();
        misbehave(second);
        waitFor(begin + std::chrono::seconds(second + 1));
        lookAtTiles();
        if (second % windowSeconds == windowSeconds - 1)
            closeAccounts(second);
    }

    heal();
    EXPECT_TRUE(waitUntil([this] { return allPlay(); }, 60s));
    for (int i = 0; i < tileCount; ++i) {
        Tile &tile = *tiles()[i];
        EXPECT_TRUE(waitUntil([&] { return tile.hasNewPicture() && tile.frameRate() > 0; })) << i;
        switch (behaviourOf(i)) {
        case Behaviour::Good:
            EXPECT_EQ(tile.interruptions(), 0) << i;
            break;
        case Behaviour::Drops: // it is back before anybody looks
            EXPECT_GE(requests(i) - requestsBefore[i], leastRequests) << i;
            break;
        case Behaviour::Freezes:
            EXPECT_GT(tile.interruptions(), 0) << i;
            break;
        case Behaviour::SendsGarbage: // a decoder may go on over it
            break;
        case Behaviour::ChangesSize:
            EXPECT_GE(tile.widths().size(), 3u);
            break;
        }
        RecordProperty("interruptions_" + std::to_string(i), tile.interruptions());
    }
}

} // namespace
