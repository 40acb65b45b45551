#include "platform/media/playout_delay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

using media::PlayoutDelay;
using namespace std::chrono_literals;

namespace {

using Clock = PlayoutDelay::Clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

const Clock::time_point begin{1h};
constexpr auto period = 40ms;

/// When each picture arrived and when it was due.
struct Played
{
    std::vector<Clock::time_point> arrived;
    std::vector<Clock::time_point> due;

    /// From one to the next, of those from that one on, in ms and growing.
    std::vector<double> gaps(size_t from) const
    {
        std::vector<double> all;
        for (size_t i = from + 1; i < due.size(); ++i)
            all.push_back(Milliseconds(due[i] - due[i - 1]).count());
        std::sort(all.begin(), all.end());
        return all;
    }
    double held(size_t i) const { return Milliseconds(due[i] - arrived[i]).count(); }
    double longestHeld(size_t from = 0) const
    {
        double longest = 0;
        for (size_t i = from; i < due.size(); ++i)
            longest = std::max(longest, held(i));
        return longest;
    }
};

double share(const std::vector<double> &sorted, double part)
{
    return sorted[static_cast<size_t>(static_cast<double>(sorted.size() - 1) * part)];
}

/// lateness: of each picture, ms; pictures arrive in their order. clock: how fast the camera's is.
Played play(PlayoutDelay &delay, int pictures, const std::function<double(int)> &lateness,
            double clock = 1)
{
    Played run;
    Clock::time_point last = begin;
    for (int i = 0; i < pictures; ++i) {
        const auto late = std::chrono::duration_cast<Clock::duration>(Milliseconds(lateness(i)));
        last = std::max(last, begin + i * period + late);
        const auto time = static_cast<uint64_t>(
            clock * static_cast<double>(std::chrono::nanoseconds(i * period).count()));
        run.arrived.push_back(last);
        run.due.push_back(delay.dueOf(time, last));
    }
    return run;
}

std::function<double(int)> jitter(double mean, double deviation)
{
    return [random = std::minstd_rand(5), normal = std::normal_distribution(mean, deviation)](
               int) mutable { return std::max(0.0, normal(random)); };
}

} // namespace

TEST(PlayoutDelay, NothingIsHeldBackOnAQuietNetwork)
{
    PlayoutDelay delay;
    const Played run = play(delay, 500, jitter(20, 1));
    EXPECT_EQ(run.longestHeld(), 0);
    EXPECT_EQ(delay.hold(), 0ns);
}

TEST(PlayoutDelay, JitterIsEvenedOutAndNoMoreThanThat)
{
    for (const double deviation : {4.0, 15.0}) {
        PlayoutDelay delay;
        const Played run = play(delay, 1000, jitter(3 * deviation, deviation));
        const std::vector<double> gaps = run.gaps(250);
        EXPECT_LE(share(gaps, 0.95), 50) << deviation;
        EXPECT_GE(share(gaps, 0.05), 30) << deviation;
        EXPECT_LE(Milliseconds(delay.hold()).count(), 6.5 * deviation);
        std::vector<double> behind;
        for (size_t i = 250; i < run.due.size(); ++i)
            behind.push_back(
                Milliseconds(run.due[i] - begin - static_cast<int>(i) * period).count());
        std::sort(behind.begin(), behind.end());
        EXPECT_LE(share(behind, 0.5), 6.5 * deviation);
    }
}

TEST(PlayoutDelay, TheHoldIsLimitedAndChangesSlowly)
{
    PlayoutDelay delay;
    auto before = delay.hold();
    const auto wild = jitter(200, 150);
    auto late = wild;
    Clock::time_point last = begin;
    for (int i = 0; i < 1000; ++i) {
        last = std::max(last,
                        begin + i * period + std::chrono::milliseconds(static_cast<int>(late(i))));
        const auto due = delay.dueOf(static_cast<uint64_t>(i) * 40'000'000, last);
        EXPECT_GE(due, last);
        EXPECT_LE(due, last + PlayoutDelay::longestHold);
        EXPECT_LE(delay.hold() - before, PlayoutDelay::step);
        EXPECT_LE(before - delay.hold(), PlayoutDelay::step);
        before = delay.hold();
    }
    EXPECT_LE(delay.hold(), PlayoutDelay::longestHold);
    EXPECT_GT(delay.hold(), 80ms);
}

TEST(PlayoutDelay, AStallIsCaughtUpWithAtOnce)
{
    PlayoutDelay delay;
    // Between the pictures 300 and 315 nothing arrives for 600 ms, then all at once.
    const Played run =
        play(delay, 800, [](int i) { return i >= 300 && i < 315 ? (315 - i) * 40.0 : 0; });
    EXPECT_EQ(run.held(299), 0);
    for (size_t i = 300; i < 315; ++i)
        EXPECT_EQ(run.held(i), 0) << i;
    EXPECT_LE(run.longestHeld(315), 120);
    EXPECT_EQ(run.held(799), 0);
}

TEST(PlayoutDelay, ADelayThatStaysIsNoJitter)
{
    PlayoutDelay delay;
    const Played run = play(delay, 1000, [](int i) { return i < 400 ? 5.0 : 85.0; });
    EXPECT_EQ(run.held(399), 0);
    EXPECT_EQ(run.held(999), 0);
    EXPECT_EQ(delay.hold(), 0ns);
}

TEST(PlayoutDelay, AClockThatIsWrongHoldsNothingBack)
{
    for (const double clock : {0.5, 0.99, 0.999, 1.001, 1.01, 2.0}) {
        PlayoutDelay delay;
        const Played run = play(
            delay, 1500, [](int) { return 0.0; }, clock);
        EXPECT_LE(run.longestHeld(), 12) << clock;
    }
}

TEST(PlayoutDelay, TimesThatStandStillOrJumpHoldNothingBack)
{
    PlayoutDelay delay;
    for (int i = 0; i < 300; ++i) {
        const auto arrived = begin + i * period;
        EXPECT_EQ(delay.dueOf(7, arrived), arrived);
    }
    for (int i = 300; i < 900; ++i) {
        const auto arrived = begin + i * period;
        const uint64_t time =
            (i < 600 ? 5'000'000'000'000U : 0U) + static_cast<uint64_t>(i) * 40'000'000U;
        EXPECT_EQ(delay.dueOf(time, arrived), arrived) << i;
    }
}

TEST(PlayoutDelay, BFramesKeepTheirOrderAndAreNoJitter)
{
    PlayoutDelay delay;
    auto late = jitter(12, 4);
    Clock::time_point lastDue = begin;
    Clock::time_point arrived = begin;
    for (int i = 0; i < 999; ++i) {
        // P3 B1 B2 P6 B4 B5 ...
        const int shown = i % 3 == 0 ? i + 3 : i;
        arrived = std::max(arrived, begin + i * period +
                                        std::chrono::milliseconds(static_cast<int>(late(i))));
        const auto due = delay.dueOf(static_cast<uint64_t>(shown) * 40'000'000, arrived);
        EXPECT_GE(due, lastDue);
        EXPECT_GE(due, arrived);
        lastDue = due;
    }
    EXPECT_LE(delay.hold(), 30ms);
}
