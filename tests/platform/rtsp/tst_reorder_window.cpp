#include "platform/rtsp/reorder_window.h"
#include "tests/platform/rtsp/support/rtp_stream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace rtsp {

namespace {

class ReorderWindowTest : public testing::Test, public ReorderWindow::Client
{
protected:
    void onOrdered(std::span<const uint8_t> packet, ReorderWindow::TimePoint arrived,
                   unsigned missing) override
    {
        m_numbers.push_back(read16(packet, 0));
        m_arrived.push_back(arrived);
        m_missing += missing;
    }
    void take(int number, int64_t milliseconds = 0)
    {
        Bytes packet;
        append(packet, static_cast<uint16_t>(number), 2);
        m_window.take(static_cast<uint16_t>(number), packet, at(milliseconds));
    }

    using Numbers = std::vector<uint16_t>;

    ReorderWindow m_window{*this};
    Numbers m_numbers;
    std::vector<ReorderWindow::TimePoint> m_arrived;
    unsigned m_missing = 0;
};

} // namespace

TEST_F(ReorderWindowTest, PassesOnWhatIsInOrder)
{
    for (int i = 65530; i < 65546; ++i) {
        take(i);
        EXPECT_EQ(m_numbers.back(), static_cast<uint16_t>(i));
        EXPECT_FALSE(m_window.deadline());
    }
    EXPECT_EQ(m_missing, 0u);
}

TEST_F(ReorderWindowTest, WaitsForWhatIsMissing)
{
    take(1);
    take(3, 5);
    take(4, 6);
    EXPECT_EQ(m_numbers, Numbers({1}));
    ASSERT_TRUE(m_window.deadline());
    EXPECT_EQ(*m_window.deadline(), at(25));
    take(2, 7);
    EXPECT_EQ(m_numbers, Numbers({1, 2, 3, 4}));
    EXPECT_EQ(m_arrived.back(), at(6));
    EXPECT_FALSE(m_window.deadline());
    EXPECT_EQ(m_missing, 0u);
    EXPECT_EQ(m_window.reordered(), 1u);
}

TEST_F(ReorderWindowTest, GivesUpInTime)
{
    take(1);
    take(4, 5);
    take(7, 15);
    m_window.tick(at(24));
    EXPECT_EQ(m_numbers, Numbers({1}));
    m_window.tick(at(25));
    EXPECT_EQ(m_numbers, Numbers({1, 4}));
    EXPECT_EQ(m_missing, 2u);
    EXPECT_EQ(*m_window.deadline(), at(35));
    m_window.tick(at(35));
    EXPECT_EQ(m_numbers, Numbers({1, 4, 7}));
    EXPECT_EQ(m_missing, 4u);
}

TEST_F(ReorderWindowTest, WaitsLongerWherePacketsCameLate)
{
    take(1);
    take(3, 0);
    take(2, 19);
    take(5, 100);
    EXPECT_EQ(*m_window.deadline(), at(138)); // twice as late
    m_window.tick(at(138));
    take(4, 140); // too late all the same
    take(7, 200);
    EXPECT_EQ(*m_window.deadline(), at(260)); // at most
    EXPECT_EQ(m_window.dropped(), 1u);
}

TEST_F(ReorderWindowTest, DropsDuplicates)
{
    take(1);
    take(1);
    take(3);
    take(3);
    take(2);
    take(2);
    EXPECT_EQ(m_numbers, Numbers({1, 2, 3}));
    EXPECT_EQ(m_window.dropped(), 3u);
}

TEST_F(ReorderWindowTest, HoldsBackOnlySoManyPackets)
{
    take(0);
    for (int i = 2; i < 65; ++i)
        take(i);
    EXPECT_EQ(m_numbers.size(), 1u);
    take(65);
    EXPECT_EQ(m_numbers.size(), 65u);
    EXPECT_EQ(m_missing, 1u);
    EXPECT_FALSE(m_window.deadline());
}

TEST_F(ReorderWindowTest, GoesOnBehindALongGap)
{
    take(0);
    take(1000);
    EXPECT_EQ(m_numbers, Numbers({0, 1000}));
    EXPECT_EQ(m_missing, 999u);
}

TEST_F(ReorderWindowTest, StartsAnewWhereNumbersJump)
{
    take(100);
    take(102);
    take(20000);
    EXPECT_EQ(m_numbers, Numbers({100})); // one alone is a stray packet
    take(20001);
    EXPECT_EQ(m_numbers, Numbers({100, 102, 20001}));
    take(20002);
    EXPECT_EQ(m_numbers.back(), 20002);
    take(5);
    take(6);
    EXPECT_EQ(m_numbers.back(), 6);
}

TEST_F(ReorderWindowTest, AStrayPacketEndsNothing)
{
    take(100);
    take(20000);
    take(101);
    take(30000);
    take(102);
    EXPECT_EQ(m_numbers, Numbers({100, 101, 102}));
    EXPECT_EQ(m_missing, 0u);
}

TEST_F(ReorderWindowTest, BringsAnyOrderOfNeighboursIntoOrder)
{
    std::mt19937 random(1); // the same each time
    std::vector<int> numbers(5000);
    std::iota(numbers.begin(), numbers.end(), 65000);
    for (std::size_t from = 1; from + 8 <= numbers.size(); from += 8)
        std::shuffle(numbers.begin() + static_cast<std::ptrdiff_t>(from),
                     numbers.begin() + static_cast<std::ptrdiff_t>(from + 8), random);
    for (const int number : numbers)
        take(number);
    ASSERT_EQ(m_numbers.size(), numbers.size());
    for (std::size_t i = 0; i < m_numbers.size(); ++i)
        ASSERT_EQ(m_numbers[i], static_cast<uint16_t>(65000 + i));
}

TEST_F(ReorderWindowTest, ForgetsAtARestart)
{
    take(1);
    take(3);
    m_window.restart();
    EXPECT_FALSE(m_window.deadline());
    take(500);
    EXPECT_EQ(m_numbers, Numbers({1, 500}));
    EXPECT_EQ(m_missing, 0u);
}

} // namespace rtsp
