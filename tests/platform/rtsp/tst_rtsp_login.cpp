#include "platform/rtsp/rtsp_login.h"

#include <gtest/gtest.h>

namespace {

const std::string uri = "rtsp://cam.lan/live/0/h264.sdp";

/// As on the first connection to a camera.
bool take(rtsp::RtspLogin &login, const std::vector<std::string> &headers, bool tls = false)
{
    rtsp::LoginPolicy policy;
    return login.takeChallenge(headers, policy, tls);
}

TEST(RtspLogin, SaysNothingBeforeTheChallenge)
{
    EXPECT_EQ(rtsp::RtspLogin("admin", "secret").authorization("DESCRIBE", uri), "");
}

TEST(RtspLogin, AnswersBasic)
{
    rtsp::RtspLogin login("Aladdin", "open sesame");
    ASSERT_TRUE(take(login, {"Basic realm=\"camera\""}));
    EXPECT_EQ(login.authorization("DESCRIBE", uri), "Basic QWxhZGRpbjpvcGVuIHNlc2FtZQ==");
}

TEST(RtspLogin, AnswersDigest)
{
    // MD5(MD5("Mufasa:testrealm@host.com:Circle Of Life") : nonce : MD5("DESCRIBE:" + uri))
    rtsp::RtspLogin login("Mufasa", "Circle Of Life");
    ASSERT_TRUE(take(login, {"Digest realm=\"testrealm@host.com\", "
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
        rtsp::RtspLogin login("admin", "secret");
        ASSERT_TRUE(take(login, headers));
        EXPECT_TRUE(login.authorization("DESCRIBE", uri).starts_with("Digest "));
    }
}

TEST(RtspLogin, PrefersTheStrongerDigest)
{
    const std::string md5 = "Digest realm=\"c\", nonce=\"weak\"";
    const std::string sha = "Digest realm=\"c\", nonce=\"strong\", algorithm=SHA-256, qop=\"auth\"";
    for (const auto &headers : std::vector<std::vector<std::string>>{
             {md5, sha, "Basic realm=\"c\""}, {sha + ", " + md5}, {sha, md5}}) {
        rtsp::RtspLogin login("admin", "secret");
        ASSERT_TRUE(take(login, headers));
        EXPECT_EQ(login.nonce(), "strong");
        const std::string first = login.authorization("DESCRIBE", uri);
        EXPECT_NE(first.find("algorithm=SHA-256, qop=auth, nc=00000001, cnonce="),
                  std::string::npos);
        EXPECT_NE(login.authorization("SETUP", uri).find("nc=00000002"), std::string::npos);
    }
}

TEST(RtspLogin, TellsAStaleNonce)
{
    rtsp::RtspLogin login("admin", "secret");
    ASSERT_TRUE(take(login, {"Digest realm=\"c\", nonce=\"1\""}));
    EXPECT_FALSE(login.isStale());
    ASSERT_TRUE(take(login, {"Digest realm=\"c\", nonce=\"2\", stale=TRUE"}));
    EXPECT_TRUE(login.isStale());
    login.forgetChallenge();
    EXPECT_FALSE(login.isInUse());
    EXPECT_EQ(login.authorization("TEARDOWN", uri), "");
}

TEST(RtspLogin, LeavesSchemesThatItDoesNotKnow)
{
    rtsp::RtspLogin login("admin", "secret");
    EXPECT_FALSE(take(login, {}));
    EXPECT_FALSE(take(login, {"Negotiate abc"}));
    EXPECT_FALSE(take(login, {"Digest realm=\"c\", nonce=\"n\", algorithm=SHA-512-256"}));
    const std::vector<std::string> both = {"Digest realm=\"c\", nonce=\"n\", algorithm=SHA-512-256",
                                           "Basic realm=\"c\""};
    EXPECT_FALSE(take(login, both)) << "it offers better than the password itself";
    ASSERT_TRUE(take(login, both, true));
    EXPECT_TRUE(login.authorization("DESCRIBE", uri).starts_with("Basic "));
}

TEST(RtspLogin, HasNoAnswerWithoutALogin)
{
    rtsp::RtspLogin login("", "");
    EXPECT_FALSE(take(login, {"Basic realm=\"camera\""}));
}

TEST(RtspLogin, ASignInANameCannotAddAHeader)
{
    rtsp::RtspLogin login("a\"b\r\nX: y", "secret");
    ASSERT_TRUE(take(login, {"Digest realm=\"c\", nonce=\"n\""}));
    const std::string value = login.authorization("DESCRIBE", uri);
    EXPECT_TRUE(value.starts_with("Digest username=\"a\\\"bX: y\", "));
    EXPECT_EQ(value.find_first_of("\r\n"), std::string::npos);
}

TEST(RtspLogin, SurvivesGarbage)
{
    for (const char *header :
         {"", " ", "Digest", "Digest ", "Digest realm", "Digest realm=\"", "Digest =,=,=\"\"",
          "Basic", "Digest realm=\"a\" nonce=\"b\"", "\xff\xfe", "Digest nonce=\"\\\""}) {
        rtsp::RtspLogin login("admin", "secret");
        if (take(login, {header}))
            EXPECT_NE(login.authorization("DESCRIBE", uri), "") << header;
        else
            EXPECT_EQ(login.authorization("DESCRIBE", uri), "") << header;
    }
}

TEST(LoginPolicy, NoBasicInClearAfterADigestWasOffered)
{
    const auto basic = base::parseChallenges({"Basic realm=\"c\""});
    const auto digest = base::parseChallenges({"Digest realm=\"c\", nonce=\"n\""});
    rtsp::LoginPolicy policy;
    EXPECT_TRUE(policy.permitsBasic(basic, false));
    EXPECT_FALSE(policy.permitsBasic(digest, false));
    EXPECT_FALSE(policy.permitsBasic(basic, false));
    EXPECT_TRUE(policy.permitsBasic(basic, true));
}

TEST(LoginPolicy, NoBasicInClearForWhoOnlyClaimsToBeTheCamera)
{
    const auto basic = base::parseChallenges({"Basic realm=\"c\""});
    rtsp::LoginPolicy policy;
    policy.distrust();
    EXPECT_FALSE(policy.permitsBasic(basic, false));
    EXPECT_TRUE(policy.permitsBasic(basic, true));
}

} // namespace
