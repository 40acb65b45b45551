#include "platform/rtsp/rtsp_probe.h"

#include "platform/base/loop_thread.h"
#include "tests/support/tiny_server.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <optional>

using Connection = TinyServer::Connection;
using testing::HasSubstr;
using testing::Not;

namespace {

/// The thread of all probes.
base::LoopThread &loop()
{
    static const std::unique_ptr<base::LoopThread> thread = base::LoopThread::create("probes");
    return *thread;
}

constexpr auto deadline = std::chrono::seconds(30);
const std::string ok = "RTSP/1.0 200 OK\r\nCSeq: 1\r\nContent-Length: 3\r\n\r\nv=0";
const std::string challenge = "RTSP/1.0 401 Unauthorized\r\nCSeq: 1\r\n"
                              "WWW-Authenticate: Basic realm=\"camera\"\r\n"
                              "WWW-Authenticate: Digest realm=\"camera\", nonce=\"1234\"\r\n\r\n";

/// A probe on its thread.
class Prober
{
public:
    ~Prober()
    {
        loop().postAndWait([this] { m_probe.reset(); });
    }
    /// nullopt when the probe does not end in time.
    std::optional<rtsp::ProbeOutcome> probe(const rtsp::ProbeTarget &target)
    {
        std::promise<rtsp::ProbeOutcome> promise;
        std::future<rtsp::ProbeOutcome> outcome = promise.get_future();
        run([&](rtsp::RtspProbe &probe) {
            probe.start(target, [&](rtsp::ProbeOutcome value) { promise.set_value(value); });
        });
        if (outcome.wait_for(deadline) == std::future_status::ready)
            return outcome.get();
        run([](rtsp::RtspProbe &probe) { probe.cancel(); });
        return std::nullopt;
    }
    void run(const std::function<void(rtsp::RtspProbe &)> &work)
    {
        loop().postAndWait([&] { work(*m_probe); });
    }

private:
    std::unique_ptr<rtsp::RtspProbe> m_probe = std::make_unique<rtsp::RtspProbe>();
};

rtsp::ProbeTarget target(uint16_t port, const std::string &user = "admin",
                         const std::string &password = "secret")
{
    return {.endpoint = {.host = "127.0.0.1", .port = port, .tls = false},
            .url = "rtsp://127.0.0.1:" + std::to_string(port) + "/live/0/h264.sdp",
            .username = user,
            .password = password};
}

TEST(RtspProbe, AsksForTheDescription)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write(ok);
        camera.waitForEnd();
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Answered);
    ASSERT_EQ(server.requests().size(), 1u);
    EXPECT_EQ(server.requests()[0],
              "DESCRIBE rtsp://" + server.address() +
                  "/live/0/h264.sdp RTSP/1.0\r\nCSeq: 1\r\nUser-Agent: Zelvaro\r\n"
                  "Accept: application/sdp\r\n\r\n");
}

TEST(RtspProbe, KeepsTheConnectionAndTheLoginForTheNextProbe)
{
    TinyServer server([](Connection &camera) {
        for (std::string request; !(request = camera.readRequest()).empty();)
            camera.write(request.find("Authorization: Digest") == std::string::npos ? challenge
                                                                                    : ok);
    });
    Prober prober;
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Answered);
    EXPECT_EQ(server.connectionCount(), 1);
    const std::vector<std::string> requests = server.requests();
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_THAT(requests[0], Not(HasSubstr("Authorization")));
    for (size_t i = 1; i < 4; ++i)
        EXPECT_THAT(requests[i], HasSubstr("Authorization: Digest username=\"admin\", "
                                           "realm=\"camera\", nonce=\"1234\""));
    EXPECT_THAT(requests[3], HasSubstr("CSeq: 4\r\n"));
}

TEST(RtspProbe, ConnectsAnewWhenTheKeptConnectionIsGone)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write(ok);
    });
    Prober prober;
    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Answered);
        EXPECT_EQ(server.connectionCount(), i);
    }
}

TEST(RtspProbe, ACameraThatDropsTheKeptConnectionAtTheRequestIsAskedOnceMore)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write(ok);
        camera.readRequest();
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Answered);
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Answered);
    EXPECT_EQ(server.connectionCount(), 2);
}

TEST(RtspProbe, AWrongPasswordIsOneWrongAnswerForEachProbe)
{
    TinyServer server([](Connection &camera) {
        while (!camera.readRequest().empty())
            camera.write(challenge);
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::LoginRefused);
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::LoginRefused);
    int logins = 0;
    for (const std::string &request : server.requests())
        logins += request.find("Authorization") == std::string::npos ? 0 : 1;
    EXPECT_EQ(logins, 2);
}

TEST(RtspProbe, ACameraThatWantsALoginRefusesNone)
{
    TinyServer server([](Connection &camera) {
        while (!camera.readRequest().empty())
            camera.write(challenge);
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port(), "", "")), rtsp::ProbeOutcome::LoginRefused);
    EXPECT_EQ(server.requests().size(), 1u);
}

TEST(RtspProbe, AChallengeMayCloseTheConnection)
{
    TinyServer server([](Connection &camera) {
        const bool login = camera.readRequest().find("Authorization") != std::string::npos;
        camera.write(login ? ok
                           : "RTSP/1.0 401 Unauthorized\r\nConnection: close\r\n"
                             "WWW-Authenticate: Basic realm=\"c\"\r\n\r\n");
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Answered);
    EXPECT_EQ(server.connectionCount(), 2);
}

TEST(RtspProbe, AnotherLoginIsTriedAfresh)
{
    TinyServer server([](Connection &camera) {
        for (std::string request; !(request = camera.readRequest()).empty();) {
            const bool right = request.find("username=\"right\"") != std::string::npos;
            camera.write(right ? ok : challenge);
        }
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port(), "wrong")), rtsp::ProbeOutcome::LoginRefused);
    EXPECT_EQ(prober.probe(target(server.port(), "right")), rtsp::ProbeOutcome::Answered);
    EXPECT_EQ(prober.probe(target(server.port(), "wrong")), rtsp::ProbeOutcome::LoginRefused);
}

TEST(RtspProbe, TellsAnUnknownPathFromOtherAnswers)
{
    TinyServer server([](Connection &camera) {
        const bool known = camera.readRequest().find("/live/0/") == std::string::npos;
        camera.write(known ? "RTSP/1.0 503 Service Unavailable\r\n\r\n"
                           : "RTSP/1.0 404 Not Found\r\n\r\n");
        camera.waitForEnd();
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::NotFound);
    rtsp::ProbeTarget other = target(server.port());
    other.url = "rtsp://" + server.address() + "/x";
    prober.run([](rtsp::RtspProbe &probe) { probe.disconnect(); });
    EXPECT_EQ(prober.probe(other), rtsp::ProbeOutcome::Unusable);
}

TEST(RtspProbe, APortWithoutAnybodyIsRejected)
{
    Prober prober;
    EXPECT_EQ(prober.probe(target(closedPort())), rtsp::ProbeOutcome::Rejected);
}

TEST(RtspProbe, AHostThatDoesNotExistIsToldApart)
{
    Prober prober;
    rtsp::ProbeTarget unknown = target(554);
    unknown.endpoint.host = "camera.invalid";
    EXPECT_EQ(prober.probe(unknown), rtsp::ProbeOutcome::NoSuchHost);
}

TEST(RtspProbe, ABlackHoleIsSilentInTime)
{
    TinyServer server([](Connection &camera) { camera.waitForEnd(); });
    Prober prober;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Silent);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST(RtspProbe, HalfAnAnswerIsNone)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write("RTSP/1.0 200 OK\r\nContent-Le");
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Unusable);
}

TEST(RtspProbe, GarbageIsNoAnswer)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write(std::string(5000, '\xfe'));
        camera.waitForEnd();
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Unusable);
}

TEST(RtspProbe, ADescriptionOfAMegabyteIsNoAnswer)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write("RTSP/1.0 200 OK\r\nContent-Length: 1048576\r\n\r\n");
        camera.write(std::string(1048576, 'v'));
        camera.waitForEnd();
    });
    Prober prober;
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Unusable);
}

TEST(RtspProbe, ACancelledProbeNeverAnswers)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write(ok);
        camera.waitForEnd();
    });
    Prober prober;
    bool answered = false;
    prober.run([&](rtsp::RtspProbe &probe) {
        probe.start(target(server.port()), [&](rtsp::ProbeOutcome) { answered = true; });
        probe.cancel();
    });
    EXPECT_EQ(prober.probe(target(server.port())), rtsp::ProbeOutcome::Answered);
    prober.run([&](rtsp::RtspProbe &) { EXPECT_FALSE(answered); });
}

TEST(RtspProbe, MayBeDestroyedAtAnyTime)
{
    TinyServer server([](Connection &camera) { camera.waitForEnd(); });
    for (int i = 0; i < 50; ++i) {
        Prober prober;
        prober.run([&](rtsp::RtspProbe &probe) {
            probe.start(target(server.port()), [](rtsp::ProbeOutcome) { FAIL() << "destroyed"; });
        });
    }
}

TEST(RtspProbe, SendsNoPasswordInClearToACameraThatOfferedBetter)
{
    TinyServer server([](Connection &camera) {
        // The first connection offers a digest, the others the password itself.
        for (std::string request; !(request = camera.readRequest()).empty();) {
            const bool proven = request.find("Authorization: Digest") != std::string::npos;
            camera.write(camera.number() > 1 ? "RTSP/1.0 401 Unauthorized\r\n"
                                               "WWW-Authenticate: Basic realm=\"camera\"\r\n\r\n"
                         : proven            ? ok
                                             : challenge);
            if (proven)
                return;
        }
    });
    const rtsp::ProbeTarget camera = target(server.port());
    Prober prober;
    EXPECT_EQ(prober.probe(camera), rtsp::ProbeOutcome::Answered);
    EXPECT_EQ(prober.probe(camera), rtsp::ProbeOutcome::LoginRefused);
    EXPECT_GE(server.connectionCount(), 2);
    for (const std::string &request : server.requests())
        EXPECT_THAT(request, Not(HasSubstr("Authorization: Basic")));
}

} // namespace
