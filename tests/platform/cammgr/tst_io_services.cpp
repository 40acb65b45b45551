#include "platform/cammgr/io_services.h"

#include "platform/cammgr/io_thread.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>

using cammgr::IoServices;
using cammgr::ioThread;
using namespace std::chrono_literals;

namespace {

TEST(IoServices, TellsThatTheNetworkCameBackAndNotThatItWent)
{
    base::LoopThread &thread = ioThread();
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
