#include "platform/base/credentials.h"
#include "platform/base/login_limit.h"
#include "platform/base/text.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

const base::LoginLimit::Time begin{};

TEST(LoginLimit, ThreeWrongOnesInHalfAnHourAreAll)
{
    base::LoginLimit limit;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(limit.mayTry(begin + i * 1min));
        limit.refused("DESCRIBE", begin + i * 1min);
    }
    EXPECT_FALSE(limit.mayTry(begin + 3min));
    EXPECT_FALSE(limit.mayTry(begin + 30min - 1s));
    EXPECT_TRUE(limit.mayTry(begin + 30min));
    limit.refused("DESCRIBE", begin + 30min);
    EXPECT_FALSE(limit.mayTry(begin + 30min));
    EXPECT_TRUE(limit.mayTry(begin + 31min));
}

TEST(LoginLimit, LeavesOneTryForThePicture)
{
    base::LoginLimit limit;
    limit.refused("ONVIF", begin);
    EXPECT_TRUE(limit.mayTryBeside(begin));
    limit.refused("ONVIF", begin);
    EXPECT_FALSE(limit.mayTryBeside(begin));
    EXPECT_TRUE(limit.mayTry(begin));
}

TEST(LoginLimit, WhatIsAcceptedForADescriptionMayBeRefusedForThePicture)
{
    base::LoginLimit limit;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(limit.mayTry(begin));
        limit.accepted("DESCRIBE");
        limit.refused("PLAY", begin);
    }
    limit.accepted("DESCRIBE");
    EXPECT_FALSE(limit.mayTry(begin));
    limit.accepted("PLAY");
    EXPECT_TRUE(limit.mayTry(begin));
}

TEST(LoginLimit, TheUserHasOneTryMore)
{
    base::LoginLimit limit;
    limit.userAsked();
    for (int i = 0; i < 3; ++i)
        limit.refused("DESCRIBE", begin);
    limit.userAsked();
    limit.userAsked();
    EXPECT_TRUE(limit.mayTry(begin));
    limit.refused("DESCRIBE", begin);
    EXPECT_FALSE(limit.mayTry(begin));
}

TEST(Latin1, IsTheSameLoginInOtherBytes)
{
    EXPECT_EQ(base::latin1Of("M\u00fcller"), "M\xfcller");
    EXPECT_EQ(base::latin1Of(""), "");
    EXPECT_EQ(base::latin1Of("\u0416"), std::nullopt);
    EXPECT_EQ(base::latin1Of("\xfc"), std::nullopt) << "no UTF-8";
    const base::Credentials own = {"M\u00fcller", "secret"};
    EXPECT_EQ(base::latin1Of(own), (base::Credentials{"M\xfcller", "secret"}));
    EXPECT_EQ(base::latin1Of(base::Credentials{"admin", "secret"}), std::nullopt);
    EXPECT_EQ(base::latin1Of(base::Credentials{"M\u00fcller", "\u0416"}), std::nullopt);
}

} // namespace
