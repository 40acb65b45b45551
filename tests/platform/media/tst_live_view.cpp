#include "platform/media/live_view.h"
#include "platform/media/still_picture.h"
#include "tests/platform/cammgr/encoded_stream.h"
#include "tests/platform/cammgr/stream_listener.h"
#include "tests/platform/cammgr/test_window.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>

using namespace media;

namespace {

class LiveViewTest : public testing::Test
{
protected:
    void SetUp() override
    {
        if (!m_window.exists())
            GTEST_SKIP() << "no X display";
    }
    void TearDown() override { m_view->close(); }

    void openAndSee()
    {
        m_view->open();
        ASSERT_TRUE(waitUntil([this] { return m_view->isDecoding(); }));
    }
    void feed(const media::AccessUnit &unit)
    {
        m_memory.takeFrame(unit);
        m_view->takeFrame(unit);
    }
    void feed(const std::vector<media::AccessUnit> &units)
    {
        for (media::AccessUnit unit : units) {
            unit.arrived = media::SteadyClock::now();
            feed(unit);
        }
    }
    bool waitForDecoded(uint64_t count)
    {
        return waitUntil([&] { return m_view->decoded() >= count; });
    }
    /// One unit, which waits for no other: of several, a busy machine would drop the late ones.
    void feedAndDecode(const media::AccessUnit &unit, uint64_t count)
    {
        feed({unit});
        EXPECT_TRUE(waitForDecoded(count));
    }

    TestWindow m_window{320, 240};
    media::GopBuffer m_memory;
    std::atomic<int> m_keyFrameWishes = 0;
    std::atomic<int> m_changes = 0;
    std::shared_ptr<media::LiveView> m_view = std::make_shared<media::LiveView>(
        m_window.id(), m_memory, [this] { ++m_keyFrameWishes; }, [this] { ++m_changes; });
};

} // namespace

TEST_F(LiveViewTest, DrawsFromAKeyFrameOn)
{
    const auto units = EncodedStream::make({.frames = 30, .keyDistance = 10});
    openAndSee();
    EXPECT_EQ(m_keyFrameWishes, 1);
    for (size_t i = 5; i < 30; ++i) {
        feed({units[i]});
        if (i >= 10)
            ASSERT_TRUE(waitForDecoded(i - 9));
    }
    EXPECT_EQ(m_view->decoded(), 20u);
    EXPECT_TRUE(waitUntil([this] { return m_window.grab().white == 0; }));
    ASSERT_TRUE(m_view->latest());
}

TEST_F(LiveViewTest, HiddenWindowCostsNoDecodingAndIsBackAtOnce)
{
    const auto units = EncodedStream::make({.frames = 100, .keyDistance = 50});
    openAndSee();
    feed({units.begin(), units.begin() + 10});
    ASSERT_TRUE(waitForDecoded(1));
    m_window.hide();
    ASSERT_TRUE(waitUntil([this] { return !m_view->isDecoding(); }));
    const auto before = m_view->decoded();
    feed({units.begin() + 10, units.begin() + 70});
    EXPECT_EQ(m_view->decoded(), before);

    m_window.show();
    // Nothing more comes: the picture is that of the last unit, from the key frame at 50 on.
    EXPECT_TRUE(waitForDecoded(before + 20));
    EXPECT_TRUE(waitUntil([this] { return m_window.grab().white == 0; }));
    const auto picture = m_window.grab();
    EXPECT_EQ(m_keyFrameWishes, 1);

    feed({units.begin() + 70, units.end()});
    EXPECT_TRUE(waitUntil([&] { return m_window.grab().sum != picture.sum; }));
}

TEST_F(LiveViewTest, HiddenAncestorCountsAsHidden)
{
    const auto units = EncodedStream::make({.frames = 20});
    openAndSee();
    m_window.hideParent();
    ASSERT_TRUE(waitUntil([this] { return !m_view->isDecoding(); }));
    feed(units);
    EXPECT_EQ(m_view->decoded(), 0u);
    m_window.showParent();
    EXPECT_TRUE(waitForDecoded(20));
}

TEST_F(LiveViewTest, CoveredWindowCostsNoDecoding)
{
    const auto units = EncodedStream::make({.frames = 20});
    openAndSee();
    {
        TestWindow cover(400, 300);
        ASSERT_TRUE(waitUntil([this] { return !m_view->isDecoding(); }));
        feed(units);
        EXPECT_EQ(m_view->decoded(), 0u);
    }
    EXPECT_TRUE(waitForDecoded(20));
    EXPECT_TRUE(waitUntil([this] { return m_window.grab().white == 0; }));
}

TEST_F(LiveViewTest, ResizeDrawsTheLatestPictureAtTheNewSize)
{
    const auto units = EncodedStream::make({.frames = 5});
    openAndSee();
    feed(units);
    ASSERT_TRUE(waitUntil([this] { return m_window.grab().white == 0; }));
    for (const auto &[width, height] : {std::pair{640, 480}, {161, 121}, {500, 100}}) {
        m_window.resize(width, height);
        ASSERT_TRUE(waitUntil([&, w = width] {
            const auto picture = m_window.grab();
            return picture.width == w && picture.white == 0;
        })) << width;
    }
}

TEST_F(LiveViewTest, PictureOfAnotherShapeStandsBetweenBars)
{
    // A white picture: what is black is a bar.
    const auto units = EncodedStream::make({.frames = 5, .pattern = "white"});
    m_window.resize(400, 200);
    openAndSee();
    feed(units);
    // 200 high makes 4:3 267 wide.
    EXPECT_TRUE(waitUntil([this] {
        const auto picture = m_window.grab();
        return picture.black >= 130 * 200 && picture.black <= 136 * 200;
    })) << m_window.grab().black;
    // A shape that is off by rounding only is filled.
    m_window.resize(401, 300);
    EXPECT_TRUE(waitUntil([this] {
        const auto picture = m_window.grab();
        return picture.width == 401 && picture.black == 0;
    })) << m_window.grab().black;
}

TEST_F(LiveViewTest, SizeChangeInMidStreamIsFollowed)
{
    const auto small = EncodedStream::make({.frames = 5});
    const auto large =
        EncodedStream::make({.frames = 5, .width = 640, .height = 480, .firstNumber = 6});
    openAndSee();
    feed(small);
    feed(large);
    ASSERT_TRUE(waitForDecoded(10));
    ASSERT_TRUE(waitUntil([this] {
        const auto latest = m_view->latest();
        int width = 0;
        if (latest)
            gst_structure_get_int(gst_caps_get_structure(gst_sample_get_caps(latest.get()), 0),
                                  "width", &width);
        return width == 640;
    }));
    EXPECT_TRUE(waitUntil([this] { return m_window.grab().white == 0; }));
}

TEST_F(LiveViewTest, GarbageIsPassedOver)
{
    const auto units = EncodedStream::make({.frames = 30, .keyDistance = 10});
    openAndSee();
    for (size_t i = 0; i < 15; ++i) {
        media::AccessUnit broken = units[i];
        broken.buffer = media::BufferRef::adopt(gst_buffer_copy_deep(units[i].buffer.get()));
        GstMapInfo map;
        gst_buffer_map(broken.buffer.get(), &map, GST_MAP_WRITE);
        for (size_t at = 6; at < map.size; at += 3)
            map.data[at] = static_cast<guint8>(at * 31 + i);
        gst_buffer_unmap(broken.buffer.get(), &map);
        feedAndDecode(broken, i + 1);
    }
    for (size_t i = 15; i < 30; ++i)
        feedAndDecode(units[i], i + 1);
    EXPECT_TRUE(waitUntil([this] { return m_window.grab().white == 0; }));
}

TEST_F(LiveViewTest, WindowThatIsGoneIsSurvived)
{
    const auto units = EncodedStream::make({.frames = 50});
    openAndSee();
    feed({units.begin(), units.begin() + 10});
    ASSERT_TRUE(waitForDecoded(1));
    m_window.destroy();
    feed({units.begin() + 10, units.end()});
    EXPECT_TRUE(waitUntil([this] { return !m_view->isDecoding(); }));
}

TEST_F(LiveViewTest, NothingIsDrawnAfterClose)
{
    const auto units = EncodedStream::make({.frames = 50});
    openAndSee();
    feed({units.begin(), units.begin() + 25});
    m_view->close();
    const auto after = m_window.grab().sum;
    feed({units.begin() + 25, units.end()});
    EXPECT_FALSE(waitUntil([&] { return m_window.grab().sum != after; }, 200ms));
    m_view->close();
}

TEST_F(LiveViewTest, CloseBeforeAndDuringOpening)
{
    m_view->close();
    m_view->open();
    EXPECT_FALSE(m_view->isDecoding());
}

TEST_F(LiveViewTest, ShowsWhenAPictureIsDrawnAndNotWhenAKeyFrameComes)
{
    const auto units = EncodedStream::make({.frames = 20, .keyDistance = 10});
    openAndSee();
    EXPECT_FALSE(m_view->isUnseen());
    media::AccessUnit empty = units[0];
    empty.buffer = media::BufferRef::adopt(
        gst_buffer_copy_region(units[0].buffer.get(), GST_BUFFER_COPY_ALL, 0, 5));
    feed({empty});
    ASSERT_TRUE(waitForDecoded(1));
    EXPECT_FALSE(m_view->hasShown());
    EXPECT_EQ(m_changes, 0);
    feed({units.begin() + 10, units.end()});
    ASSERT_TRUE(waitUntil([this] { return m_view->hasShown(); }));
    EXPECT_EQ(m_window.grab().white, 0u);
    ASSERT_TRUE(waitForDecoded(11));
    EXPECT_EQ(m_changes, 1);
}

TEST_F(LiveViewTest, TellsThatNobodyCanSeeTheWindow)
{
    openAndSee();
    m_window.hide();
    EXPECT_TRUE(waitUntil([this] { return m_view->isUnseen() && m_changes == 1; }));
    m_window.show();
    EXPECT_TRUE(waitUntil([this] { return !m_view->isUnseen() && m_changes == 2; }));
    EXPECT_FALSE(m_view->hasShown());
}

TEST_F(LiveViewTest, AnOverloadThatLosesThePictureWantsAKeyFrame)
{
    const auto units = EncodedStream::make({.frames = 2});
    openAndSee();
    feed(units[0]);
    ASSERT_TRUE(waitForDecoded(1));
    const int before = m_keyFrameWishes;
    // No machine decodes ten seconds in the time that it takes to queue them.
    const auto begin = media::SteadyClock::now();
    for (int i = 0; i < 500; ++i) {
        media::AccessUnit unit = units[1];
        unit.number = 2 + i;
        unit.reference = true;
        unit.arrived = begin + i * 20ms;
        m_view->takeFrame(unit);
    }
    EXPECT_GT(m_keyFrameWishes, before);
}

TEST_F(LiveViewTest, NobodyDrawsWhenOneOfTwoClosingThreadsReturns)
{
    // Drawing on a destroyed window raises an X error. The watch may ask for it (2, 3, 15) once
    // more.
    static std::atomic<int> errors = 0;
    const auto count = +[](const gchar *, GLogLevelFlags, const gchar *text, gpointer) {
        const std::string line = text;
        const bool asked = line.find("(request 2.") != line.npos ||
                           line.find("(request 3.") != line.npos ||
                           line.find("(request 15.") != line.npos;
        if (line.starts_with("X error") && !asked)
            ++errors;
    };
    const guint handler = g_log_set_handler("cammgr", G_LOG_LEVEL_INFO, count, nullptr);
    const auto units = EncodedStream::make({.frames = 25, .width = 1280, .height = 720});
    for (int i = 0; i < 20; ++i) {
        TestWindow window(640, 360);
        media::GopBuffer memory;
        const auto view = std::make_shared<media::LiveView>(window.id(), memory, nullptr);
        view->open();
        ASSERT_TRUE(waitUntil([&] { return view->isDecoding(); }));
        for (media::AccessUnit unit : units) {
            unit.arrived = media::SteadyClock::now();
            view->takeFrame(unit);
        }
        ASSERT_TRUE(waitUntil([&] { return view->hasShown(); }));
        std::thread other([&] { view->close(); });
        // Second, while the first waits for the frame that is being decoded.
        const auto deadline = media::SteadyClock::now() + 30s;
        while (view->isDecoding() && media::SteadyClock::now() < deadline)
            std::this_thread::yield();
        view->close();
        window.destroy();
        other.join();
    }
    g_log_remove_handler("cammgr", handler);
    EXPECT_EQ(errors, 0);
}
