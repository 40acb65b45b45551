#include "platform/base/http_login.h"

#include <gtest/gtest.h>

namespace onvif {

namespace {

const base::Credentials mufasa = {"Mufasa", "Circle Of Life"};

std::string exampleChallenge(const std::string &algorithm)
{
    return R"(Digest realm="testrealm@host.com", qop="auth, auth-int", algorithm=)" + algorithm +
           R"(, nonce="dcd98b7102dd2f0e8b11d0f600bfb0c093",)"
           R"( opaque="5ccc069c403ebaf9f0171e9517f40e41")";
}

std::string answerTo(const std::vector<std::string> &headers)
{
    std::optional<base::HttpDigest> digest =
        base::HttpDigest::choose(base::parseChallenges(headers));
    return digest ? digest->authorization("GET", "/dir/index.html", mufasa, "0a4f113b")
                  : std::string();
}

bool has(const std::string &text, const std::string &part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

// The example of RFC 2617, 3.5, and the same with the other hash.
TEST(HttpDigest, AnswersTheExampleOfTheStandard)
{
    const std::string md5 = answerTo({exampleChallenge("MD5")});
    EXPECT_TRUE(has(md5, R"(response="6629fae49393a05397450978507c4ef1")")) << md5;
    EXPECT_TRUE(has(md5, R"(username="Mufasa")")) << md5;
    EXPECT_TRUE(has(md5, "qop=auth, nc=00000001")) << md5;
    EXPECT_TRUE(has(md5, R"(opaque="5ccc069c403ebaf9f0171e9517f40e41")")) << md5;
    const std::string sha = answerTo({exampleChallenge("SHA-256")});
    EXPECT_TRUE(
        has(sha, R"(response="5abdd07184ba512a22c53f41470e5eea7dcaa3a93a59b630c13dfe0a5dc6e38b")"))
        << sha;
    EXPECT_TRUE(has(sha, "algorithm=SHA-256")) << sha;
}

TEST(HttpDigest, TakesTheStrongestItKnows)
{
    EXPECT_TRUE(has(answerTo({exampleChallenge("MD5"), exampleChallenge("SHA-256")}), "SHA-256"));
    EXPECT_TRUE(
        has(answerTo({exampleChallenge("SHA-256") + ", " + exampleChallenge("MD5")}), "SHA-256"));
    EXPECT_TRUE(has(answerTo({R"(Basic realm="x", Digest realm="r", nonce="n")"}), "Digest"));
    for (const char *none :
         {"", "Basic realm=\"x\"", "Digest realm=\"r\", nonce=\"n\", algorithm=SHA-512-256",
          "Digest realm=\"r\", nonce=\"n\", qop=\"auth-int\"", "=", ",,,", "\"", "a=b"})
        EXPECT_EQ(answerTo({none}), "") << none;
}

// The example of RFC 2069, 2.4, with the response that its errata give.
TEST(HttpDigest, AnswersDevicesThatOfferNoQop)
{
    std::optional<base::HttpDigest> digest = base::HttpDigest::choose(base::parseChallenges(
        {R"(Digest realm="testrealm@host.com", nonce="dcd98b7102dd2f0e8b11d0f600bfb0c093",)"
         R"( opaque="5ccc069c403ebaf9f0171e9517f40e41")"}));
    ASSERT_TRUE(digest);
    const std::string answer =
        digest->authorization("GET", "/dir/index.html", {"Mufasa", "CircleOfLife"});
    EXPECT_TRUE(has(answer, R"(response="1949323746fe6a43ef61f9606e7febea")")) << answer;
    EXPECT_FALSE(has(answer, "qop")) << answer;
}

TEST(HttpDigest, CountsTheRequestsOfANonce)
{
    std::optional<base::HttpDigest> digest =
        base::HttpDigest::choose(base::parseChallenges({exampleChallenge("MD5")}));
    ASSERT_TRUE(digest);
    static_cast<void>(digest->authorization("GET", "/", mufasa));
    EXPECT_TRUE(has(digest->authorization("GET", "/", mufasa), "nc=00000002"));
    EXPECT_FALSE(digest->isStale());
    EXPECT_TRUE(base::HttpDigest::choose(base::parseChallenges({R"(Digest nonce="n", stale=TRUE)"}))
                    ->isStale());
}

TEST(HttpChallenge, ReadsQuotedTextsAndSeveralOfAHeader)
{
    const auto found = base::parseChallenges(
        {R"(Negotiate, DIGEST Realm = "a \"b\", c" , nonce=x)", R"(Basic realm="d)", "\x01\x02"});
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].scheme, "negotiate");
    EXPECT_EQ(found[1].scheme, "digest");
    EXPECT_EQ(found[1].parameters.at("realm"), "a \"b\", c");
    EXPECT_EQ(found[1].parameters.at("nonce"), "x");
    EXPECT_EQ(found[2].parameters.at("realm"), "d");
    EXPECT_LE(
        base::parseChallenges({std::string(100'000, 'a') + " ", std::string(5'000, ',')}).size(),
        16u);
}

TEST(HttpBasic, IsThisText)
{
    EXPECT_EQ(base::basicAuthorization({"admin", "secret"}), "Basic YWRtaW46c2VjcmV0");
}

} // namespace onvif
