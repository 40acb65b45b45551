#include "camsim/camsim_process.h"
#include "tests/platform/rtsp/viewer.h"
#include "tests/support/network_link.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

using zelvaro::test::CamsimProcess;
using zelvaro::test::NetworkLink;

namespace {

using namespace std::chrono_literals;

constexpr int rate = 15; // pictures a second of a sub stream

/// A viewer and a camera with a network between them.
class LinkTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        try {
            // Before any thread is started: all of them have to be on the viewer's side.
            link = std::make_unique<NetworkLink>(zelvaro::test::LinkConditions{});
        } catch (const std::runtime_error &problem) {
            missing = problem.what();
        }
    }
    static void TearDownTestSuite() { link.reset(); }

    void SetUp() override
    {
        if (!link)
            GTEST_SKIP() << "no network namespaces: " << missing;
        link->atCamera([this] {
            m_camsim = std::make_unique<CamsimProcess>(
                std::vector<std::string>{"--bind", NetworkLink::cameraAddress(), "--nagle"});
        });
    }

    rtsp::StreamRequest request() const
    {
        const auto &camera = m_camsim->camera();
        return {.url = camera.subUrl, .username = camera.user, .password = camera.password};
    }

    /// How late most pictures of a part were, in ms, counted from any moment.
    static double lateness(const std::vector<base::AccessUnit> &units, size_t from, size_t to)
    {
        std::vector<double> all;
        for (size_t i = from; i < to; ++i) {
            const auto sent = std::chrono::nanoseconds(units[i].time);
            const auto late = units[i].arrived.time_since_epoch() - sent;
            all.push_back(std::chrono::duration<double, std::milli>(late).count());
        }
        std::sort(all.begin(), all.end());
        return all[all.size() * 9 / 10];
    }

    static std::unique_ptr<NetworkLink> link;
    static std::string missing;
    std::unique_ptr<CamsimProcess> m_camsim;
};

std::unique_ptr<NetworkLink> LinkTest::link;
std::string LinkTest::missing;

} // namespace

TEST_F(LinkTest, ThePictureGoesOnWhereOnePacketInAHundredIsLost)
{
    link->setConditions({.delay = 20ms, .jitter = 5ms, .loss = 0.01, .bitsPerSecond = 20'000'000});
    Viewer viewer(request());
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(1)) << viewer.text();
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(viewer.waitForFrames(12 * rate)) << viewer.text();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 13s);
    const std::vector<base::AccessUnit> units = viewer.units();
    for (size_t i = 0; i < units.size(); ++i)
        EXPECT_EQ(units[i].number, i + 1); // none is lost over TCP
    // The delay does not grow.
    const double first = lateness(units, rate, 5 * rate);
    const double last = lateness(units, 8 * rate, 12 * rate);
    EXPECT_LT(last - first, 150);
}

TEST_F(LinkTest, ADelayThatComesAndGoesIsNotKept)
{
    link->setConditions({.delay = 5ms});
    Viewer viewer(request());
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(3 * rate)) << viewer.text();
    link->setConditions({.delay = 5ms, .bitsPerSecond = 200'000}); // less than the stream has
    ASSERT_TRUE(viewer.waitForFrames(4 * rate)) << viewer.text();
    link->setConditions({.delay = 5ms});
    ASSERT_TRUE(viewer.waitForFrames(14 * rate)) << viewer.text();
    const std::vector<base::AccessUnit> units = viewer.units();
    const double before = lateness(units, rate, 3 * rate);
    const double after = lateness(units, 12 * rate, 14 * rate);
    EXPECT_LT(after - before, 100);
}
