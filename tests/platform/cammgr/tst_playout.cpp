#include "platform/base/loop_thread.h"
#include "platform/cammgr/playout.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

using cammgr::Playout;
using media::AccessUnit;
using media::SteadyClock;
using namespace std::chrono_literals;

namespace {

/// What came out, and when.
class Shown
{
public:
    void add(const AccessUnit &unit)
    {
        const std::lock_guard lock(m_mutex);
        m_units.push_back(unit);
        m_moments.push_back(SteadyClock::now());
        m_changed.notify_all();
    }
    bool waitFor(size_t count)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, 20s, [&] { return m_units.size() >= count; });
    }
    std::vector<AccessUnit> units() const
    {
        const std::lock_guard lock(m_mutex);
        return m_units;
    }
    std::vector<SteadyClock::time_point> moments() const
    {
        const std::lock_guard lock(m_mutex);
        return m_moments;
    }

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<AccessUnit> m_units;
    std::vector<SteadyClock::time_point> m_moments;
};

class PlayoutTest : public testing::Test
{
protected:
    PlayoutTest()
    {
        m_thread->postAndWait([this] {
            m_playout =
                std::make_unique<Playout>([this](const AccessUnit &unit) { m_shown.add(unit); });
        });
    }
    ~PlayoutTest() override
    {
        m_thread->postAndWait([this] { m_playout.reset(); });
    }
    /// A picture of a stream of 25 a second, late by so much.
    void take(uint64_t number, std::chrono::milliseconds lateness)
    {
        m_thread->postAndWait([&] {
            AccessUnit unit;
            unit.number = number;
            unit.time = number * 40'000'000;
            unit.arrived = m_begin + number * 40ms + lateness;
            m_playout->take(unit);
        });
    }

    const SteadyClock::time_point m_begin = SteadyClock::now() - 300 * 40ms;
    Shown m_shown;
    std::unique_ptr<Playout> m_playout;
    const std::unique_ptr<base::LoopThread> m_thread = base::LoopThread::create("test");
};

} // namespace

TEST_F(PlayoutTest, OnAQuietNetworkEachFrameIsShownAtOnce)
{
    for (uint64_t i = 1; i <= 300; ++i) {
        take(i, 0ms);
        EXPECT_EQ(m_shown.units().size(), i);
        EXPECT_EQ(m_shown.units().back().held, 0ms);
    }
}

TEST_F(PlayoutTest, FramesAreShownInTheirOrderWhenTheyAreDue)
{
    // Up to now one in four was late by 60 ms.
    for (uint64_t i = 1; i < 300; ++i)
        take(i, i % 4 == 0 ? 60ms : 0ms);
    ASSERT_TRUE(m_shown.waitFor(299));
    for (uint64_t i = 300; i < 303; ++i)
        take(i, 0ms);
    ASSERT_TRUE(m_shown.waitFor(302));
    const auto units = m_shown.units();
    for (size_t i = 0; i < units.size(); ++i)
        EXPECT_EQ(units[i].number, i + 1);
    const auto moments = m_shown.moments();
    for (size_t i = 299; i < 302; ++i) {
        EXPECT_GE(units[i].held, 40ms);
        EXPECT_LE(units[i].held, 120ms);
        EXPECT_GE(moments[i], units[i].due() - 2ms) << i;
    }
}

TEST_F(PlayoutTest, WhatIsHeldWhenItEndsIsNotShown)
{
    for (uint64_t i = 1; i < 300; ++i)
        take(i, i % 4 == 0 ? 100ms : 0ms);
    ASSERT_TRUE(m_shown.waitFor(299));
    take(302, 0ms); // 80 ms from now, and more
    const size_t shown = m_shown.units().size();
    m_thread->postAndWait([this] { m_playout.reset(); });
    EXPECT_EQ(m_shown.units().size(), shown);
}
