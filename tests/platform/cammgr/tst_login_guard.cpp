#include "platform/cammgr/talk_back.h"
#include "tests/platform/cammgr/wait_until.h"
#include "tests/support/tiny_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

using cammgr::TalkBack;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

const std::string digest = "WWW-Authenticate: Digest realm=\"c\", nonce=\"md5\"\r\n";
const std::string sha256 =
    "WWW-Authenticate: Digest realm=\"c\", nonce=\"sha\", algorithm=SHA-256\r\n";
const std::string basic = "WWW-Authenticate: Basic realm=\"c\"\r\n";

std::string headerOf(const std::string &request, const std::string &name)
{
    const size_t begin = request.find("\r\n" + name + ": ");
    if (begin == std::string::npos)
        return {};
    const size_t from = begin + name.size() + 4;
    return request.substr(from, request.find("\r\n", from) - from);
}

/// A camera that refuses each login with its next challenge, the last one again and again.
class RefusingCamera
{
public:
    explicit RefusingCamera(std::vector<std::string> challenges)
        : m_challenges(std::move(challenges))
        , m_server([this](TinyServer::Connection &connection) { serve(connection); })
    {
        setenv("ZELVARO_TALKBACK_SOURCE", "audiotestsrc is-live=true", 1);
    }

    /// Talks once; what the camera received in Authorization headers.
    std::vector<std::string> logins(const std::shared_ptr<rtsp::LoginPolicy> &policy)
    {
        const size_t before = m_server.requests().size();
        TalkBack talk;
        talk.start({.url = "rtsp://" + m_server.address() + "/live/0/h264.sdp",
                    .username = "admin",
                    .password = "secret",
                    .login = policy});
        EXPECT_TRUE(waitUntil([&] { return !talk.isRunning(); }));
        EXPECT_NE(talk.failure(), 0);
        talk.stop();
        std::vector<std::string> logins;
        const std::vector<std::string> requests = m_server.requests();
        for (size_t i = before; i < requests.size(); ++i) {
            const std::string login = headerOf(requests[i], "Authorization");
            if (!login.empty())
                logins.push_back(login);
        }
        return logins;
    }

private:
    void serve(TinyServer::Connection &connection)
    {
        for (std::string request; !(request = connection.readRequest()).empty();) {
            const std::string sequence = "CSeq: " + headerOf(request, "CSeq") + "\r\n";
            if (request.starts_with("OPTIONS")) {
                connection.write("RTSP/1.0 200 OK\r\n" + sequence +
                                 "Public: DESCRIBE, SETUP, PLAY\r\n\r\n");
                continue;
            }
            connection.write("RTSP/1.0 401 Unauthorized\r\n" + sequence + m_challenges[m_next] +
                             "\r\n");
            if (m_next + 1 < m_challenges.size())
                ++m_next;
        }
    }

    const std::vector<std::string> m_challenges;
    size_t m_next = 0; ///< one connection at a time
    TinyServer m_server;
};

TEST(LoginGuard, ARefusedLoginIsTriedOnce)
{
    for (const std::string &challenge : {digest, basic}) {
        RefusingCamera camera({challenge});
        EXPECT_EQ(camera.logins(std::make_shared<rtsp::LoginPolicy>()).size(), 1u) << challenge;
    }
}

TEST(LoginGuard, ANonceThatGrewOldIsAnsweredOnceMore)
{
    RefusingCamera camera(
        {digest, "WWW-Authenticate: Digest realm=\"c\", nonce=\"new\", stale=true\r\n"});
    const auto logins = camera.logins(std::make_shared<rtsp::LoginPolicy>());
    ASSERT_EQ(logins.size(), 2u);
    EXPECT_THAT(logins[0], HasSubstr("nonce=\"md5\""));
    EXPECT_THAT(logins[1], HasSubstr("nonce=\"new\""));
}

TEST(LoginGuard, TheChallengeThatCanBeAnsweredIsTakenOutOfSeveral)
{
    for (const std::string &challenges :
         {digest + sha256, sha256 + digest, basic + digest, digest + basic}) {
        RefusingCamera camera({challenges});
        const auto logins = camera.logins(std::make_shared<rtsp::LoginPolicy>());
        ASSERT_EQ(logins.size(), 1u) << challenges;
        EXPECT_THAT(logins[0], StartsWith("Digest "));
        EXPECT_THAT(logins[0], HasSubstr("nonce=\"md5\"")) << challenges;
    }
}

TEST(LoginGuard, APasswordIsNotSentInClearToACameraThatOfferedBetter)
{
    RefusingCamera camera({digest, basic});
    const auto policy = std::make_shared<rtsp::LoginPolicy>();
    const auto first = camera.logins(policy);
    ASSERT_EQ(first.size(), 1u);
    EXPECT_THAT(first[0], StartsWith("Digest "));
    EXPECT_TRUE(camera.logins(policy).empty());
    RefusingCamera both({sha256 + basic});
    EXPECT_TRUE(both.logins(std::make_shared<rtsp::LoginPolicy>()).empty());
}

TEST(LoginGuard, APasswordIsNotSentInClearToWhoOnlyClaimsToBeTheCamera)
{
    RefusingCamera camera({basic});
    const auto policy = std::make_shared<rtsp::LoginPolicy>();
    policy->distrust();
    EXPECT_TRUE(camera.logins(policy).empty());
}

} // namespace
