#include "platform/onvif/soap_client.h"

#include "platform/base/known_keys.h"
#include "tests/platform/onvif/support/raw_peer.h"
#include "tests/platform/onvif/support/soap_device.h"
#include "tests/platform/rtsp/tls_front.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

namespace onvif {

namespace {

constexpr const char *request = "GetScopes";
constexpr const char *body = "<tds:GetScopes/>";
constexpr const char *response = "<tds:GetScopesResponse/>";

class SoapClientTest : public testing::Test
{
protected:
    SoapReply call(SoapClient &client)
    {
        std::optional<SoapReply> got;
        const RequestPtr running =
            client.call(client.deviceService(), "urn:action", body, SoapKind::Question,
                        [&got](SoapReply reply) { got = std::move(reply); });
        EXPECT_FALSE(got) << "the answer is never told inside the call";
        EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
        return got.value_or(SoapReply());
    }

    SoapStatus statusFrom(const std::string &service, unsigned milliseconds = 20'000)
    {
        SoapClient client(m_context.get(), service, {"admin", "secret"},
                          {.questionMilliseconds = milliseconds});
        return call(client).status;
    }

    SoapStatus statusFor(const SoapDevice &device, const base::Credentials &credentials,
                         ClearPassword clear = ClearPassword::Never)
    {
        SoapClient client(m_context.get(), device.service(), credentials,
                          {.clearPassword = clear, .questionMilliseconds = 20'000});
        return call(client).status;
    }

    TestContext m_context;
};

bool hasToken(const std::string &text)
{
    return text.find("UsernameToken") != std::string::npos;
}

std::string okAnswer()
{
    const std::string text = SoapDevice::envelope(response);
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(text.size()) + "\r\n\r\n" + text;
}

std::string basicChallenge()
{
    return "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm=\"r\"\r\n"
           "Content-Length: 0\r\n\r\n";
}

} // namespace

TEST_F(SoapClientTest, TellsTheAnswer)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    SoapClient client(m_context.get(), device.service(), {});
    const SoapReply reply = call(client);
    EXPECT_EQ(reply.status, SoapStatus::Ok);
    ASSERT_TRUE(reply.message);
    EXPECT_TRUE(child(reply.message->body(), "GetScopesResponse"));
    ASSERT_EQ(device.seen().size(), 1u);
    EXPECT_EQ(device.seen()[0].contentType,
              "application/soap+xml; charset=utf-8; action=\"urn:action\"");
}

TEST_F(SoapClientTest, SignsWithDigest)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::Digest, "admin", "secret");
    EXPECT_EQ(statusFor(device, {"admin", "secret"}), SoapStatus::Ok);
    ASSERT_EQ(device.seen().size(), 1u);
    EXPECT_EQ(device.seen()[0].authorization.substr(0, 7), "Digest ");
    EXPECT_FALSE(hasToken(device.seen()[0].text)) << "never both";
}

TEST_F(SoapClientTest, SignsLaterRequestsWithoutBeingAsked)
{
    RawServer server({"HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Digest realm=\"r\", "
                      "nonce=\"n\", qop=\"auth\"\r\nContent-Length: 0\r\n\r\n",
                      okAnswer()},
                     RawServer::End::StayOpen);
    SoapClient client(m_context.get(), server.service(), {"admin", "secret"});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    ASSERT_EQ(server.requests().size(), 3u);
    EXPECT_NE(server.requests()[1].find("nc=00000001"), std::string::npos);
    EXPECT_NE(server.requests()[2].find("nc=00000002"), std::string::npos);
    EXPECT_EQ(server.connections(), 1);
}

TEST_F(SoapClientTest, AnswersANonceThatHasRunOut)
{
    const std::string head = "HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n";
    RawServer server(
        {head + "WWW-Authenticate: Digest realm=\"r\", nonce=\"first\"\r\n\r\n", okAnswer(),
         head + "WWW-Authenticate: Digest realm=\"r\", nonce=\"second\"\r\n\r\n", okAnswer()},
        RawServer::End::StayOpen);
    SoapClient client(m_context.get(), server.service(), {"admin", "secret"});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    ASSERT_EQ(server.requests().size(), 4u);
    EXPECT_NE(server.requests()[3].find("nonce=\"second\""), std::string::npos);
}

TEST_F(SoapClientTest, AsksOnceMoreWhenAKeptConnectionWasClosed)
{
    RawServer server(okAnswer(), RawServer::End::CloseAtSecond);
    SoapClient client(m_context.get(), server.service(), {});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_EQ(server.requests().size(), 2u);
    EXPECT_EQ(server.connections(), 2);
}

TEST_F(SoapClientTest, SignsOverANewConnectionWhenTheRefusalClosedTheFirst)
{
    RawServer server({"HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Digest realm=\"r\", "
                      "nonce=\"n\"\r\nContent-Length: 0\r\n\r\n",
                      okAnswer()},
                     RawServer::End::CloseAtSecond);
    EXPECT_EQ(statusFrom(server.service()), SoapStatus::Ok);
    EXPECT_EQ(server.connections(), 2);
}

TEST_F(SoapClientTest, NeverSendsAChangeTwiceByItself)
{
    RawServer server(okAnswer(), RawServer::End::CloseAtSecond);
    SoapClient client(m_context.get(), server.service(), {});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    std::optional<SoapReply> got;
    const RequestPtr running = client.call(
        client.deviceService(), "urn:action", body, SoapKind::Change,
        [&got](SoapReply reply) { got = std::move(reply); });
    EXPECT_TRUE(m_context.runUntil([&got] { return got.has_value(); }));
    EXPECT_EQ(got->status, SoapStatus::Ok);
    EXPECT_EQ(server.connections(), 2) << "a connection of its own";
    EXPECT_EQ(server.requests().size(), 2u);
}

// The memory of what a device has offered is kept by host, for the whole process: each of these
// needs its own host.
TEST_F(SoapClientTest, TellsThePasswordInClearOnlyWhereNothingElseWasEverOffered)
{
    RawServer server({basicChallenge(), basicChallenge(), basicChallenge(), okAnswer()},
                     RawServer::End::StayOpen, "127.0.0.21");
    const std::string service = server.service();
    SoapClient client(m_context.get(), service, {"admin", "secret"},
                      {.clearPassword = ClearPassword::AsLastResort});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    ASSERT_EQ(server.requests().size(), 4u) << "unsigned, clock, token, basic";
    EXPECT_TRUE(hasToken(server.requests()[2])) << "the token is tried first";
    EXPECT_NE(server.requests()[3].find("Basic YWRtaW46c2VjcmV0"), std::string::npos);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(server.requests()[static_cast<std::size_t>(i)].find("Basic YW"),
                  std::string::npos);
}

TEST_F(SoapClientTest, NeverTellsThePasswordInClearToOneThatMayBeAnybody)
{
    RawServer server(basicChallenge(), RawServer::End::StayOpen, "127.0.0.22");
    SoapClient client(m_context.get(), server.service(), {"admin", "secret"});
    EXPECT_EQ(call(client).status, SoapStatus::Refused);
    for (const std::string &seen : server.requests())
        EXPECT_EQ(seen.find("Basic YW"), std::string::npos);
}

TEST_F(SoapClientTest, NeverTellsThePasswordInClearToOneThatHasOfferedMore)
{
    RawServer server({"HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Digest realm=\"r\", "
                      "nonce=\"n\"\r\nContent-Length: 0\r\n\r\n",
                      okAnswer(), basicChallenge()},
                     RawServer::End::StayOpen, "127.0.0.23");
    const std::string service = server.service();
    const SoapOptions options{.clearPassword = ClearPassword::AsLastResort};
    SoapClient first(m_context.get(), service, {"admin", "secret"}, options);
    EXPECT_EQ(call(first).status, SoapStatus::Ok);
    SoapClient second(m_context.get(), service, {"admin", "secret"}, options);
    EXPECT_EQ(call(second).status, SoapStatus::Refused);
    for (const std::string &seen : server.requests())
        EXPECT_EQ(seen.find("Basic YW"), std::string::npos);
}

TEST_F(SoapClientTest, WithAWrongPasswordIsRefused)
{
    for (const auto guard :
         {SoapDevice::Guard::Digest, SoapDevice::Guard::Basic, SoapDevice::Guard::Token}) {
        SoapDevice device(m_context);
        device.answer(request, response);
        device.guard(guard, "admin", "secret");
        EXPECT_EQ(statusFor(device, {"admin", "wrong"}), SoapStatus::Refused);
        EXPECT_EQ(statusFor(device, {"other", "secret"}), SoapStatus::Refused);
        EXPECT_EQ(statusFor(device, {}), SoapStatus::Refused);
    }
}

TEST_F(SoapClientTest, DoesNotLetAWrongPasswordPassAfterARightOne)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::Digest, "admin", "secret");
    SoapClient right(m_context.get(), device.service(), {"admin", "secret"});
    EXPECT_EQ(call(right).status, SoapStatus::Ok);
    EXPECT_EQ(statusFor(device, {"admin", "wrong"}), SoapStatus::Refused);
    EXPECT_EQ(call(right).status, SoapStatus::Ok);
}

TEST_F(SoapClientTest, FallsBackToATokenDatedByTheDevicesClock)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::Token, "admin", "secret");
    device.setClockOffset(-20 * 365 * 24 * 3600L);
    SoapClient client(m_context.get(), device.service(), {"admin", "secret"});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    ASSERT_EQ(device.seen().size(), 3u);
    EXPECT_FALSE(hasToken(device.seen()[0].text));
    EXPECT_EQ(device.seen()[1].request, "GetSystemDateAndTime");
    EXPECT_TRUE(hasToken(device.seen()[2].text));
    EXPECT_TRUE(device.seen()[2].authorization.empty()) << "never both";
}

TEST_F(SoapClientTest, TriesATokenAfterARefusedDigest)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::DigestAndToken, "admin", "secret");
    EXPECT_EQ(statusFor(device, {"admin", "secret"}), SoapStatus::Ok);
    const std::size_t before = device.seen().size();
    EXPECT_EQ(statusFor(device, {"admin", "wrong"}), SoapStatus::Refused);
    const auto isSigned = [](const SoapDevice::Seen &seen) {
        return !seen.authorization.empty() || hasToken(seen.text);
    };
    EXPECT_LE(std::count_if(device.seen().begin() + static_cast<std::ptrdiff_t>(before),
                            device.seen().end(), isSigned),
              3)
        << "accounts are locked after a few wrong answers";
}

TEST_F(SoapClientTest, LogsWhatARefusedDeviceSaysButNoPassword)
{
    static std::string logged;
    logged.clear();
    const auto collect = [](const char *, GLogLevelFlags, const char *text, gpointer) {
        logged += std::string(text) + '\n';
    };
    const guint handler = g_log_set_handler("onvif", G_LOG_LEVEL_DEBUG, collect, nullptr);
    SoapDevice device(m_context);
    device.guard(SoapDevice::Guard::Token, "admin", "secret");
    EXPECT_EQ(statusFor(device, {"admin", "hidden"}), SoapStatus::Refused);
    g_log_remove_handler("onvif", handler);
    EXPECT_NE(logged.find("HTTP status 400"), std::string::npos) << logged;
    EXPECT_NE(logged.find("ter:NotAuthorized"), std::string::npos) << logged;
    EXPECT_EQ(logged.find("hidden"), std::string::npos) << logged;
}

TEST_F(SoapClientTest, TriesATokenAfterAnErrorThatSaysNothing)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::BareToken, "admin", "secret");
    EXPECT_EQ(statusFor(device, {"admin", "secret"}), SoapStatus::Ok);
    EXPECT_EQ(statusFor(device, {"admin", "wrong"}), SoapStatus::Refused);
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
}

TEST_F(SoapClientTest, DatesATokenByLocalTimeOrTheHttpDate)
{
    for (const auto clock : {SoapDevice::Clock::LocalOnly, SoapDevice::Clock::Refused}) {
        SoapDevice device(m_context);
        device.answer(request, response);
        device.guard(SoapDevice::Guard::Token, "admin", "secret");
        device.setClock(clock);
        device.setClockOffset(-20 * 24 * 3600L);
        EXPECT_EQ(statusFor(device, {"admin", "secret"}), SoapStatus::Ok);
        EXPECT_EQ(device.seen(request).size(), 2u);
    }
}

TEST_F(SoapClientTest, DatesASecondTokenByTheHttpDateWhereTheReportedTimeIsWrong)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::Token, "admin", "secret");
    device.setClock(SoapDevice::Clock::WrongUtc);
    EXPECT_EQ(statusFor(device, {"admin", "secret"}), SoapStatus::Ok);
    EXPECT_EQ(device.seen(request).size(), 3u) << "unsigned, and two tokens";
}

TEST_F(SoapClientTest, KeepsTheWayThatWorked)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::Token, "admin", "secret");
    SoapClient client(m_context.get(), device.service(), {"admin", "secret"});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_EQ(device.seen().size(), 4u);
}

TEST_F(SoapClientTest, ReadsTheClockAgainWhenItWasSet)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::Token, "admin", "secret");
    SoapClient client(m_context.get(), device.service(), {"admin", "secret"});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    device.setClockOffset(7200);
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_EQ(device.seen("GetSystemDateAndTime").size(), 2u);
}

TEST_F(SoapClientTest, GivesUpWhenTheClockIsNotTheReason)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    device.guard(SoapDevice::Guard::Token, "admin", "secret");
    SoapClient client(m_context.get(), device.service(), {"admin", "secret"});
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    device.guard(SoapDevice::Guard::Token, "admin", "changed");
    EXPECT_EQ(call(client).status, SoapStatus::Refused);
    EXPECT_EQ(device.seen(request).size(), 3u) << "one more attempt, no account is locked";
}

TEST_F(SoapClientTest, IsRefusedByADeviceThatRefusesEverything)
{
    SoapDevice device(m_context);
    device.guard(SoapDevice::Guard::Unreasonable, "", "");
    EXPECT_EQ(statusFor(device, {"admin", "secret"}), SoapStatus::Refused);
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Refused);
}

TEST_F(SoapClientTest, TellsFaultsApart)
{
    SoapDevice device(m_context);
    device.answerFault(request, "ter:InvalidArgVal");
    EXPECT_EQ(statusFor(device, {"admin", "secret"}), SoapStatus::Fault);
    device.answerRaw(request, 404, "<html/>");
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
    device.answerRaw(request, 200, "not XML");
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
    device.answerRaw(request, 200, "");
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
    RawServer brokenChunks("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n",
                           RawServer::End::Close);
    EXPECT_EQ(statusFrom(brokenChunks.service()), SoapStatus::Fault);
    device.answerRaw(request, 500, SoapDevice::envelope(response));
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
}

TEST_F(SoapClientTest, RefusesEntityBombsAndDeepAnswers)
{
    SoapDevice device(m_context);
    device.answerRaw(request, 200,
                     "<!DOCTYPE a [<!ENTITY b \"bbbb\">]>" + SoapDevice::envelope("<c>&b;</c>"));
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<a>";
    for (int i = 0; i < 100'000; ++i)
        deep += "</a>";
    device.answer(request, deep);
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
}

TEST_F(SoapClientTest, ReadsNoMoreThanItsLimit)
{
    SoapDevice device(m_context);
    device.answer(request, std::string(3 * XmlMessage::maxBytes, ' ') + response);
    EXPECT_EQ(statusFor(device, {}), SoapStatus::Fault);
}

TEST_F(SoapClientTest, DoesNotFollowRedirections)
{
    SoapDevice other(m_context);
    other.answer(request, response);
    RawServer server("HTTP/1.1 307 Temporary Redirect\r\nLocation: " + other.service() +
                         "\r\nContent-Length: 0\r\n\r\n",
                     RawServer::End::Close);
    EXPECT_EQ(statusFrom(server.service()), SoapStatus::Fault);
    EXPECT_TRUE(other.seen().empty());
}

TEST_F(SoapClientTest, OfABrokenServerHasNoAnswer)
{
    for (const char *answer :
         {"", "garbage garbage\r\n\r\n", "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nshort",
          "HTTP/9.9 abc\r\n\r\n", "\x16\x03\x01\x02"}) {
        RawServer server(answer, RawServer::End::Close);
        EXPECT_EQ(statusFrom(server.service()), SoapStatus::NoAnswer) << answer;
    }
}

TEST_F(SoapClientTest, WaitsNoLongerThanItsLimit)
{
    RawServer silent("", RawServer::End::StayOpen);
    EXPECT_EQ(statusFrom(silent.service(), 100), SoapStatus::NoAnswer);
    RawServer half("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n<Envel",
                   RawServer::End::StayOpen);
    EXPECT_EQ(statusFrom(half.service(), 100), SoapStatus::NoAnswer);
}

TEST_F(SoapClientTest, OfADeadAddressHasNoAnswer)
{
    std::string service;
    {
        const SoapDevice gone(m_context);
        service = gone.service();
    }
    EXPECT_EQ(statusFrom(service), SoapStatus::NoAnswer);
    EXPECT_EQ(statusFrom("http://"), SoapStatus::NoAnswer);
    EXPECT_EQ(statusFrom("no address at all"), SoapStatus::NoAnswer);
}

TEST_F(SoapClientTest, IsCancelledByTheDestructionOfTheRequest)
{
    SoapDevice device(m_context);
    device.keepSilent(request);
    bool isCalled = false;
    SoapClient client(m_context.get(), device.service(), {});
    RequestPtr running = client.call(
        client.deviceService(), "a", body, SoapKind::Question,
        [&isCalled](const SoapReply &) { isCalled = true; });
    EXPECT_TRUE(m_context.runUntil([&device] { return device.seen().size() == 1; }));
    running.reset();
    running = client.call(client.deviceService(), "a", body, SoapKind::Question,
                          [&isCalled](const SoapReply &) { isCalled = true; });
    running.reset();
    m_context.drain();
    EXPECT_FALSE(isCalled);
}

TEST_F(SoapClientTest, LetsTheReceiverAskAgain)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    SoapClient client(m_context.get(), device.service(), {});
    int answers = 0;
    RequestPtr running;
    std::function<void(SoapReply)> next = [&](const SoapReply &reply) {
        EXPECT_EQ(reply.status, SoapStatus::Ok);
        if (++answers < 3)
            running = client.call(client.deviceService(), "a", body, SoapKind::Question, next);
        else
            running.reset();
    };
    running = client.call(client.deviceService(), "a", body, SoapKind::Question, next);
    EXPECT_TRUE(m_context.runUntil([&answers] { return answers == 3; }));
    EXPECT_FALSE(running);
}

std::string refusal(const std::string &more = {})
{
    return "HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Digest realm=\"r\", nonce=\"n\"" + more +
           "\r\nContent-Length: 0\r\n\r\n";
}

TEST_F(SoapClientTest, ALoginBeyondAsciiIsTriedInLatin1AfterUtf8)
{
    const base::Credentials user = {"M\u00fcller", "secret"};
    const RawServer device({refusal(), refusal(), okAnswer()}, RawServer::End::StayOpen);
    SoapClient client(m_context.get(), device.service(), user);
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    ASSERT_EQ(device.requests().size(), 3U);
    EXPECT_NE(device.requests()[1].find("username=\"M\u00fcller\""), std::string::npos);
    EXPECT_NE(device.requests()[2].find("username=\"M\xfcller\""), std::string::npos);
    EXPECT_EQ(call(client).status, SoapStatus::Ok);
    EXPECT_NE(device.requests()[3].find("username=\"M\xfcller\""), std::string::npos);

    const RawServer modern(refusal(", charset=UTF-8"), RawServer::End::StayOpen);
    SoapClient other(m_context.get(), modern.service(), user);
    EXPECT_EQ(call(other).status, SoapStatus::Refused);
    for (const std::string &text : modern.requests())
        EXPECT_EQ(text.find("\xfc"
                            "ller\""),
                  std::string::npos);
}

TEST_F(SoapClientTest, LeavesOneWrongLoginForThePicture)
{
    const auto limit = std::make_shared<base::LoginLimit>();
    const RawServer device(refusal(), RawServer::End::StayOpen);
    for (int i = 0; i < 3; ++i) {
        SoapClient client(m_context.get(), device.service(), {"admin", "wrong"}, {.limit = limit});
        EXPECT_EQ(call(client).status, SoapStatus::Refused);
    }
    int wrong = 0;
    for (const std::string &text : device.requests())
        wrong += text.find("Authorization:") != std::string::npos || hasToken(text) ? 1 : 0;
    EXPECT_EQ(wrong, 2);
    EXPECT_TRUE(limit->mayTry());
    EXPECT_FALSE(limit->mayTryBeside());
}

TEST_F(SoapClientTest, OverTlsADeviceHasToKeepItsKey)
{
    SoapDevice device(m_context);
    device.answer(request, response);
    auto front = std::make_unique<TlsFront>(device.port());
    const int port = front->port();
    const std::string service = "https://127.0.0.1:" + std::to_string(port) + "/onvif";
    EXPECT_EQ(statusFrom(service), SoapStatus::Ok);
    EXPECT_EQ(statusFrom(service), SoapStatus::Ok);
    front.reset();
    const std::size_t asked = device.seen().size();
    EXPECT_EQ(asked, 2U);

    front = std::make_unique<TlsFront>(device.port(), TlsFront::Key::Second, port);
    EXPECT_EQ(statusFrom(service), SoapStatus::NoAnswer);
    EXPECT_EQ(device.seen().size(), asked) << "nothing is told to a stranger";
    EXPECT_TRUE(base::KnownKeys::instance().trustChanged("127.0.0.1"));
    EXPECT_EQ(statusFrom(service), SoapStatus::Ok);
}

} // namespace onvif
