#include "platform/cammgr/probe_schedule.h"

#include <gtest/gtest.h>

#include <vector>

using cammgr::ProbeSchedule;
using namespace std::chrono_literals;

namespace {

/// A client that probes every 3 s, and counts the seconds between the probes that are really sent.
class Client
{
public:
    explicit Client(rtsp::ProbeOutcome outcome) : m_outcome(outcome) {}

    void setOutcome(rtsp::ProbeOutcome outcome) { m_outcome = outcome; }
    ProbeSchedule &schedule() { return m_schedule; }

    /// Seconds before each of the next count real probes.
    std::vector<int> pauses(int count)
    {
        std::vector<int> result;
        while (static_cast<int>(result.size()) < count) {
            m_now += 3s;
            if (!m_schedule.isDue(m_now))
                continue;
            m_schedule.record(m_outcome, m_now);
            result.push_back(static_cast<int>((m_now - m_last) / 1s));
            m_last = m_now;
        }
        return result;
    }

private:
    rtsp::ProbeOutcome m_outcome;
    ProbeSchedule m_schedule;
    ProbeSchedule::Time m_now{1000h};
    ProbeSchedule::Time m_last = m_now;
};

TEST(ProbeSchedule, AsksAtOnceAtFirst)
{
    const ProbeSchedule schedule;
    EXPECT_TRUE(schedule.isDue(ProbeSchedule::Time(1h)));
    EXPECT_EQ(schedule.remembered(), rtsp::ProbeOutcome::Silent);
}

TEST(ProbeSchedule, TriesARefusedLoginThreeTimesInHalfAnHour)
{
    Client client(rtsp::ProbeOutcome::LoginRefused);
    EXPECT_EQ(client.pauses(7), (std::vector{3, 3, 6, 1791, 24, 48, 1728}));
    EXPECT_EQ(client.schedule().remembered(), rtsp::ProbeOutcome::LoginRefused);
}

TEST(ProbeSchedule, TellsHowLongARefusedLoginIsNotTried)
{
    ProbeSchedule schedule;
    const ProbeSchedule::Time begin(1000h);
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(schedule.loginPause(begin));
        schedule.record(rtsp::ProbeOutcome::LoginRefused, begin + i * 10s);
    }
    EXPECT_EQ(schedule.loginPause(begin + 20s), begin + 30min);
    EXPECT_FALSE(schedule.loginPause(begin + 30min));
    schedule.userAsked();
    EXPECT_FALSE(schedule.loginPause(begin + 20s));
    schedule.record(rtsp::ProbeOutcome::Answered, begin + 30s);
    EXPECT_FALSE(schedule.loginPause(begin + 30s));
}

TEST(ProbeSchedule, ARefusalInPlayCountsBesideProbesThatNeedNoLogin)
{
    // Described to anybody, played to nobody: each probe succeeds, and the stream is refused.
    ProbeSchedule schedule;
    int refusals = 0;
    for (ProbeSchedule::Time now(1000h); now < ProbeSchedule::Time(1000h) + 30min; now += 3s) {
        if (!schedule.isDue(now))
            continue;
        schedule.record(rtsp::ProbeOutcome::Answered, now);
        schedule.record(rtsp::ProbeOutcome::LoginRefused, now + 100ms);
        ++refusals;
    }
    EXPECT_EQ(refusals, 3);
    EXPECT_EQ(schedule.remembered(), rtsp::ProbeOutcome::LoginRefused);
}

TEST(ProbeSchedule, TheUserMayTryOnceMore)
{
    Client client(rtsp::ProbeOutcome::LoginRefused);
    client.pauses(3);
    client.schedule().userAsked();
    // From then on the window of the last three counts: it began at 6 s.
    EXPECT_EQ(client.pauses(2), (std::vector{3, 1791}));
    client.setOutcome(rtsp::ProbeOutcome::Silent);
    client.pauses(6);
    client.schedule().userAsked();
    EXPECT_EQ(client.pauses(1), (std::vector{3}));
}

TEST(ProbeSchedule, ASilentHostCostsLessAndLess)
{
    Client client(rtsp::ProbeOutcome::Silent);
    EXPECT_EQ(client.pauses(7), (std::vector{3, 3, 6, 12, 15, 15, 15}));
}

TEST(ProbeSchedule, AHostThatAnswersIsAskedEachTime)
{
    for (const rtsp::ProbeOutcome outcome :
         {rtsp::ProbeOutcome::Answered, rtsp::ProbeOutcome::Rejected, rtsp::ProbeOutcome::Unusable,
          rtsp::ProbeOutcome::NotFound}) {
        Client client(outcome);
        EXPECT_EQ(client.pauses(6), (std::vector{3, 3, 3, 3, 3, 3}));
    }
}

TEST(ProbeSchedule, AnAnswerEndsTheBackOff)
{
    Client client(rtsp::ProbeOutcome::LoginRefused);
    client.pauses(3);
    client.setOutcome(rtsp::ProbeOutcome::Answered);
    EXPECT_EQ(client.pauses(3), (std::vector{1791, 3, 3}));
    client.schedule().loginAccepted();
    client.setOutcome(rtsp::ProbeOutcome::LoginRefused);
    EXPECT_EQ(client.pauses(4), (std::vector{3, 3, 6, 1791}));
}

TEST(ProbeSchedule, TheNetworkComingBackEndsTheBackOffOfASilentHost)
{
    Client client(rtsp::ProbeOutcome::Silent);
    client.pauses(6);
    client.schedule().networkChanged();
    EXPECT_EQ(client.pauses(3), (std::vector{3, 3, 6}));
}

TEST(ProbeSchedule, TheNetworkComingBackDoesNotTryARefusedLoginSooner)
{
    Client client(rtsp::ProbeOutcome::LoginRefused);
    client.pauses(3);
    client.schedule().networkChanged();
    EXPECT_EQ(client.pauses(1), (std::vector{1791}));
}

TEST(ProbeSchedule, AnotherAddressStartsAnew)
{
    Client client(rtsp::ProbeOutcome::LoginRefused);
    client.pauses(3);
    client.schedule().reset();
    EXPECT_EQ(client.pauses(3), (std::vector{3, 3, 6}));
}

} // namespace
