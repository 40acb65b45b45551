#include "platform/base/loop_thread.h"

#include "platform/base/timer.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <vector>

using namespace std::chrono_literals;

namespace {

TEST(LoopThread, RunsWorkInOrderAndWaits)
{
    std::vector<int> order;
    const auto thread = base::LoopThread::create("test");
    ASSERT_TRUE(thread);
    for (int i = 0; i < 100; ++i)
        thread->post([&order, i] { order.push_back(i); });
    bool isThere = false;
    thread->postAndWait([&] {
        isThere = thread->isCurrent();
        thread->postAndWait([&] { order.push_back(100); }); // at once, on the thread itself
    });
    EXPECT_TRUE(isThere);
    EXPECT_FALSE(thread->isCurrent());
    ASSERT_EQ(order.size(), 101u);
    for (int i = 0; i <= 100; ++i)
        EXPECT_EQ(order[static_cast<size_t>(i)], i);
}

TEST(Timer, FiresOnceAndMayBeStartedAnewOrDestroyedByItsWork)
{
    const auto thread = base::LoopThread::create("test");
    ASSERT_TRUE(thread);
    std::unique_ptr<base::Timer> timer;
    std::promise<void> finished;
    int count = 0;
    const std::function<void()> work = [&] {
        if (++count < 3) {
            timer->start(1ms, work);
        } else {
            timer.reset();
            finished.set_value();
        }
    };
    thread->postAndWait([&] {
        timer = std::make_unique<base::Timer>();
        timer->start(1h, [&] { count = 1000; });
        timer->start(1ms, work);
    });
    ASSERT_EQ(finished.get_future().wait_for(30s), std::future_status::ready);
    EXPECT_EQ(count, 3);
}

} // namespace
