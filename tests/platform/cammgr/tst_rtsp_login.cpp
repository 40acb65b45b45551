#include "platform/cammgr/rtsp_login.h"

#include <gtest/gtest.h>

using cammgr::RtspLogin;

namespace {

const std::string uri = "rtsp://cam.lan/live/0/h264.sdp";

TEST(RtspLogin, SaysNothingBeforeTheChallenge)
{
    EXPECT_EQ(RtspLogin("admin", "secret").authorization("DESCRIBE", uri), "");
}

TEST(RtspLogin, AnswersBasic)
{
    RtspLogin login("Aladdin", "open sesame");
    ASSERT_TRUE(login.takeChallenge({"Basic realm=\"camera\""}));
    EXPECT_EQ(login.authorization("DESCRIBE", uri), "Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ==");
}

TEST(RtspLogin, AnswersDigest)
{
    // MD5(MD5("Mufasa:testrealm@host.com:Circle Of Life") : nonce : MD5("DESCRIBE:" + uri))
    RtspLogin login("Mufasa", "Circle Of Life");
    ASSERT_TRUE(login.takeChallenge({"Digest realm=\"testrealm@host.com\", "
                                     "nonce=\"dcd98b7102dd2f0e8b11d0f600bfb0c093\", "
                                     "opaque=\"5ccc069c403ebaf9f0171e9517f40e41\""}));
    EXPECT_EQ(login.authorization("GET", "/dir/index.html"),
              "Digest username=\"Mufasa\", realm=\"testrealm@host.com\", "
              "nonce=\"dcd98b7102dd2f0e8b11d0f600bfb0c093\", uri=\"/dir/index.html\", "
              "response=\"670fd8c2df070c60b045671b8b24ff02\", "
              "opaque=\"5ccc069c403ebaf9f0171e9517f40e41\"");
}

TEST(RtspLogin, PrefersDigestToBasic)
{
    for (const auto &headers : std::vector<std::vector<std::string>>{
             {"Basic realm=\"c\"", "Digest realm=\"c\", nonce=\"n\""},
             {"Digest realm=\"c\", nonce=\"n\"", "Basic realm=\"c\""}}) {
        RtspLogin login("admin", "secret");
        ASSERT_TRUE(login.takeChallenge(headers));
        EXPECT_TRUE(login.authorization("DESCRIBE", uri).starts_with("Digest "));
    }
}

TEST(RtspLogin, LeavesSchemesThatItDoesNotKnow)
{
    RtspLogin login("admin", "secret");
    EXPECT_FALSE(login.takeChallenge({}));
    EXPECT_FALSE(login.takeChallenge({"Negotiate abc"}));
    EXPECT_FALSE(login.takeChallenge({"Digest realm=\"c\", nonce=\"n\", algorithm=SHA-256"}));
    ASSERT_TRUE(login.takeChallenge(
        {"Digest realm=\"c\", nonce=\"n\", algorithm=SHA-256", "Basic realm=\"c\""}));
    EXPECT_TRUE(login.authorization("DESCRIBE", uri).starts_with("Basic "));
}

TEST(RtspLogin, HasNoAnswerWithoutALogin)
{
    RtspLogin login("", "");
    EXPECT_FALSE(login.takeChallenge({"Basic realm=\"camera\""}));
}

TEST(RtspLogin, ASignInANameCannotAddAHeader)
{
    RtspLogin login("a\"b\r\nX: y", "secret");
    ASSERT_TRUE(login.takeChallenge({"Digest realm=\"c\", nonce=\"n\""}));
    const std::string value = login.authorization("DESCRIBE", uri);
    EXPECT_TRUE(value.starts_with("Digest username=\"a\\\"bX: y\", "));
    EXPECT_EQ(value.find_first_of("\r\n"), std::string::npos);
}

TEST(RtspLogin, SurvivesGarbage)
{
    for (const char *header :
         {"", " ", "Digest", "Digest ", "Digest realm", "Digest realm=\"", "Digest =,=,=\"\"",
          "Basic", "Digest realm=\"a\" nonce=\"b\"", "\xff\xfe", "Digest nonce=\"\\\""}) {
        RtspLogin login("admin", "secret");
        if (login.takeChallenge({header})) {
            EXPECT_NE(login.authorization("DESCRIBE", uri), "") << header;
        } else {
            EXPECT_EQ(login.authorization("DESCRIBE", uri), "") << header;
        }
    }
}

} // namespace
