#include "platform/cammgr/io_services.h"

#include "platform/cammgr/io_thread.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>

using cammgr::IoServices;
using cammgr::IoThread;
using cammgr::Timer;
using namespace std::chrono_literals;

namespace {

TEST(IoThread, RunsWorkInOrderAndWaits)
{
    std::vector<int> order;
    IoThread &thread = IoThread::instance();
    for (int i = 0; i < 100; ++i)
        thread.post([&order, i] { order.push_back(i); });
    bool isThere = false;
    thread.postAndWait([&] {
        isThere = thread.isCurrent();
        thread.postAndWait([&] { order.push_back(100); }); // at once, on the thread itself
    });
    EXPECT_TRUE(isThere);
    EXPECT_FALSE(thread.isCurrent());
    ASSERT_EQ(order.size(), 101u);
    for (int i = 0; i <= 100; ++i)
        EXPECT_EQ(order[static_cast<size_t>(i)], i);
}

TEST(IoThread, ATimerFiresOnceAndMayBeStartedAnewOrDestroyedByItsWork)
{
    IoThread &thread = IoThread::instance();
    std::unique_ptr<Timer> timer;
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
    thread.postAndWait([&] {
        timer = std::make_unique<Timer>();
        timer->start(1h, [&] { count = 1000; });
        timer->start(1ms, work);
    });
    ASSERT_EQ(finished.get_future().wait_for(30s), std::future_status::ready);
    EXPECT_EQ(count, 3);
}

TEST(IoServices, TellsThatTheNetworkCameBackAndNotThatItWent)
{
    IoThread &thread = IoThread::instance();
    int first = 0;
    int second = 0;
    int firstId = 0;
    int secondId = 0;
    thread.postAndWait([&] {
        firstId = IoServices::instance().watchNetwork([&] { ++first; });
        secondId = IoServices::instance().watchNetwork([&] { ++second; });
    });
    const auto change = [&](bool available) {
        thread.postAndWait([&] {
            g_signal_emit_by_name(g_network_monitor_get_default(), "network-changed", available);
        });
        thread.postAndWait([] {}); // the watchers run a turn later
    };
    change(false);
    EXPECT_EQ(first, 0);
    change(true);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
    thread.postAndWait([&] { IoServices::instance().unwatchNetwork(firstId); });
    change(true);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 2);
    thread.postAndWait([&] { IoServices::instance().unwatchNetwork(secondId); });
}

} // namespace
