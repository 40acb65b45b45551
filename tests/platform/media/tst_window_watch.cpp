#include "platform/media/window_watch.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/test_window.h"

#include <gtest/gtest.h>

using namespace media;

namespace {

class WindowWatchTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!m_window.exists())
            GTEST_SKIP() << "no X display";
        m_number = media::WindowWatch::instance().add(
            m_window.id(), [this](const media::WindowState &state, bool damaged) {
                std::lock_guard lock(m_mutex);
                m_state = state;
                ++m_calls;
                m_damages += damaged;
            });
    }
    void TearDown() override
    {
        if (m_number != 0)
            media::WindowWatch::instance().remove(m_number);
    }
    media::WindowState state()
    {
        std::lock_guard lock(m_mutex);
        return m_state;
    }
    int damages()
    {
        std::lock_guard lock(m_mutex);
        return m_damages;
    }
    int calls()
    {
        std::lock_guard lock(m_mutex);
        return m_calls;
    }
    bool waitVisible(bool visible)
    {
        return waitUntil([&] { return calls() > 0 && state().visible == visible; });
    }

    TestWindow m_window{200, 100};
    std::mutex m_mutex;
    media::WindowState m_state;
    int m_calls = 0;
    int m_damages = 0;
    int m_number = 0;
};

} // namespace

TEST_F(WindowWatchTest, TellsSizeAndVisibilityFirst)
{
    ASSERT_TRUE(waitVisible(true));
    EXPECT_EQ(state().width, 200);
    EXPECT_EQ(state().height, 100);
}

TEST_F(WindowWatchTest, FollowsHidingOfWindowAndParent)
{
    ASSERT_TRUE(waitVisible(true));
    m_window.hide();
    EXPECT_TRUE(waitVisible(false));
    m_window.hideParent();
    m_window.show();
    m_window.showParent();
    EXPECT_TRUE(waitVisible(true));
    m_window.hideParent();
    EXPECT_TRUE(waitVisible(false));
    m_window.showParent();
    EXPECT_TRUE(waitVisible(true));
}

TEST_F(WindowWatchTest, FollowsResizing)
{
    ASSERT_TRUE(waitVisible(true));
    m_window.resize(300, 250);
    EXPECT_TRUE(waitUntil([this] { return state().width == 300 && state().height == 250; }));
}

TEST_F(WindowWatchTest, FullyCoveredIsHiddenAndPartlyCoveredIsNot)
{
    ASSERT_TRUE(waitVisible(true));
    {
        TestWindow cover(400, 300);
        EXPECT_TRUE(waitVisible(false));
        cover.resize(150, 80);
        EXPECT_TRUE(waitVisible(true));
    }
    EXPECT_TRUE(waitUntil([this] { return damages() > 0; }));
}

TEST_F(WindowWatchTest, WindowThatGoesIsHidden)
{
    ASSERT_TRUE(waitVisible(true));
    m_window.destroy();
    EXPECT_TRUE(waitVisible(false));
}

TEST_F(WindowWatchTest, WindowThatNeverWasIsHidden)
{
    std::atomic<int> calls = 0;
    std::atomic<bool> visible = true;
    const int number = media::WindowWatch::instance().add(
        0x7ffffff0,
        [&](const media::WindowState &state, bool) {
            visible = state.visible;
            ++calls;
        });
    EXPECT_TRUE(waitUntil([&] { return calls > 0; }));
    EXPECT_FALSE(visible);
    media::WindowWatch::instance().remove(number);
}

TEST_F(WindowWatchTest, NoCallAfterRemove)
{
    ASSERT_TRUE(waitVisible(true));
    media::WindowWatch::instance().remove(std::exchange(m_number, 0));
    const int before = calls();
    m_window.hide();
    TestWindow other(50, 50);
    std::atomic<bool> seen = false;
    const int number = media::WindowWatch::instance().add(
        other.id(), [&](const media::WindowState &, bool) { seen = true; });
    ASSERT_TRUE(waitUntil([&] { return seen.load(); }));
    EXPECT_EQ(calls(), before);
    media::WindowWatch::instance().remove(number);
}

TEST_F(WindowWatchTest, WindowThatIsMovedToAnotherParentFollowsThat)
{
    ASSERT_TRUE(waitVisible(true));
    TestWindow other(300, 300);
    XReparentWindow(m_window.display(), m_window.id(), other.parent(), 0, 0);
    XSync(m_window.display(), False);
    ASSERT_TRUE(waitVisible(true));
    other.hideParent();
    EXPECT_TRUE(waitVisible(false));
    other.showParent();
    EXPECT_TRUE(waitVisible(true));
}
