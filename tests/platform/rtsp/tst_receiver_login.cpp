#include "tests/platform/rtsp/scripted_camera.h"
#include "tests/platform/rtsp/viewer.h"

#include <glib.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <set>

using rtsp::StreamEnd;
using testing::HasSubstr;
using testing::Not;
using Connection = ScriptedCamera::Connection;
using Request = ScriptedCamera::Request;

namespace {

std::string hash(GChecksumType type, const std::string &text)
{
    gchar *sum = g_compute_checksum_for_data(type, reinterpret_cast<const guchar *>(text.data()),
                                             text.size());
    const std::string result = sum;
    g_free(sum);
    return result;
}

/// The parameters of an Authorization header (RFC 7616 3.4).
std::map<std::string, std::string> parametersOf(const std::string &header)
{
    std::map<std::string, std::string> parameters;
    size_t position = header.find(' ') + 1;
    while (position < header.size()) {
        const size_t equals = header.find('=', position);
        if (equals == std::string::npos)
            break;
        const std::string name = header.substr(position, equals - position);
        std::string value;
        position = equals + 1;
        if (header[position] == '"') {
            for (++position; position < header.size() && header[position] != '"'; ++position) {
                if (header[position] == '\\')
                    ++position;
                value += header[position];
            }
        }
        const size_t comma = std::min(header.find(',', position), header.size());
        if (value.empty())
            value = header.substr(position, comma - position);
        parameters[name] = value;
        position = std::min(header.find_first_not_of(", ", comma), header.size());
    }
    return parameters;
}

/// What a camera expects of its clients.
struct Login
{
    std::string user = "admin";
    std::string password = "secret";
    std::string realm = "camera";
    bool sha256 = false;
    bool session = false;
    bool qop = false;
};

std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char c : text)
        result += (c == '"' || c == '\\' ? std::string("\\") : std::string()) + c;
    return result + '"';
}

std::string challenge(const Login &login, const std::string &nonce, const std::string &more = {})
{
    return "WWW-Authenticate: Digest realm=" + quoted(login.realm) + ", nonce=\"" + nonce + "\"" +
           (login.qop ? ", qop=\"auth,auth-int\"" : "") +
           (login.sha256 || login.session
                ? std::string(", algorithm=") + (login.sha256 ? "SHA-256" : "MD5") +
                      (login.session ? "-sess" : "")
                : "") +
           more + "\r\n";
}

bool isRight(const Request &request, const Login &login, const std::string &nonce)
{
    auto given = parametersOf(request.header("authorization"));
    const GChecksumType type = login.sha256 ? G_CHECKSUM_SHA256 : G_CHECKSUM_MD5;
    std::string secret = hash(type, login.user + ':' + login.realm + ':' + login.password);
    if (login.session)
        secret = hash(type, secret + ':' + nonce + ':' + given["cnonce"]);
    const std::string middle =
        login.qop ? ':' + given["nc"] + ':' + given["cnonce"] + ":auth:" : ":";
    const std::string address = hash(type, request.method + ':' + request.url);
    return request.header("authorization").starts_with("Digest ") && given["nonce"] == nonce &&
           given["username"] == login.user && given["realm"] == login.realm &&
           given["uri"] == request.url && (!login.qop || given["qop"] == "auth") &&
           given["response"] == hash(type, secret + ':' + nonce + middle + address);
}

int logins(const ScriptedCamera &camera)
{
    int count = 0;
    for (const Request &request : camera.requests())
        count += request.header("authorization").empty() ? 0 : 1;
    return count;
}

TEST(ReceiverLogin, AnswersEveryDigest)
{
    for (const bool sha256 : {false, true})
        for (const bool session : {false, true})
            for (const bool qop : {false, true}) {
                const Login login{.realm = "a \"quoted\\\" realm",
                                  .sha256 = sha256,
                                  .session = session,
                                  .qop = qop};
                std::set<std::string> counts;
                int refusals = 0;
                ScriptedCamera camera(
                    {.script = [&](const Request &request, Connection &connection) {
                        if (isRight(request, login, "n0nce")) {
                            counts.insert(parametersOf(request.header("authorization"))["nc"]);
                            return false;
                        }
                        ++refusals;
                        connection.answer(request, "401 Unauthorized", challenge(login, "n0nce"));
                        return true;
                    }});
                Viewer viewer(camera.url(), login.user, login.password);
                viewer.start();
                ASSERT_TRUE(viewer.waitForFrames(5)) << viewer.text();
                viewer.close();
                ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
                EXPECT_EQ(refusals, 1);
                EXPECT_EQ(camera.requests("TEARDOWN").size(), 1u);
                // Each request has a count of its own.
                EXPECT_EQ(counts.size(), qop ? 6u : 1u);
            }
}

TEST(ReceiverLogin, UsersAndPasswordsMayHoldAnything)
{
    for (const std::string text : {"a\"b\\c", "p:a@s/s?#%20", "J\xc3\xbcrgen", "' or 1"}) {
        Login login;
        login.user = text.find(':') == std::string::npos ? text : "admin";
        login.password = text;
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            const bool right = isRight(request, login, "1");
            if (!right)
                connection.answer(request, "401 Unauthorized", challenge(login, "1"));
            return !right;
        }});
        Viewer viewer(camera.url(), login.user, login.password);
        viewer.start();
        EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
    }
}

TEST(ReceiverLogin, TheStrongestOfSeveralChallengesIsAnswered)
{
    const Login strong{.sha256 = true, .qop = true};
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        const bool right = isRight(request, strong, "strong");
        if (!right)
            connection.answer(request, "401 Unauthorized",
                              "WWW-Authenticate: Basic realm=\"camera\"\r\n" +
                                  challenge({}, "weak") + challenge(strong, "strong"));
        return !right;
    }});
    Viewer viewer(camera.url(), "admin", "secret");
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
}

TEST(ReceiverLogin, AWrongPasswordIsOneWrongAnswer)
{
    for (const char *method : {"OPTIONS", "DESCRIBE", "SETUP", "PLAY"})
        for (const bool closes : {false, true}) {
            // A nonce of its own each time, as some cameras have it.
            int nonce = 0;
            ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
                if (request.method != method)
                    return false;
                connection.answer(request, "401 Unauthorized",
                                  challenge({}, std::to_string(++nonce)) +
                                      (closes ? "Connection: close\r\n" : ""));
                if (closes)
                    connection.close();
                return true;
            }});
            Viewer viewer(camera.url(), "admin", "wrong");
            viewer.start();
            EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused) << method;
            EXPECT_EQ(logins(camera), 1) << method;
            EXPECT_EQ(camera.requests(method).size(), 2u);
        }
}

const Login latin1 = {.user = "M\xfcller", .password = "gr\xfcn"};

TEST(ReceiverLogin, ALoginBeyondAsciiIsTriedInLatin1AfterUtf8)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (isRight(request, latin1, "1"))
            return false;
        connection.answer(request, "401 Unauthorized", challenge(latin1, "1"));
        return true;
    }});
    rtsp::StreamRequest request{
        .url = camera.url(), .username = "M\u00fcller", .password = "gr\u00fcn"};
    Viewer viewer(request);
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(5)) << viewer.text();
    viewer.close();
    const auto isUtf8 = [](const Request &each) {
        return each.header("authorization").find("M\u00fcller") != std::string::npos;
    };
    const auto count = [&] {
        const std::vector<Request> all = camera.requests();
        return std::count_if(all.begin(), all.end(), isUtf8);
    };
    EXPECT_EQ(count(), 1) << "one wrong answer";
    // Nor does the camera hear it again.
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    EXPECT_EQ(count(), 1);
}

TEST(ReceiverLogin, OnlyWhatIsAnotherLoginIsTriedAsLatin1)
{
    for (const auto &[user, more] : {std::pair("M\u00fcller", ", charset=UTF-8"),
                                     std::pair("admin", ""), std::pair("\u0416", "")}) {
        ScriptedCamera camera(
            {.script = [more = std::string(more)](const Request &request, Connection &connection) {
                connection.answer(request, "401 Unauthorized", challenge({}, "1", more));
                return true;
            }});
        Viewer viewer(camera.url(), user, "wrong");
        viewer.start();
        EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
        EXPECT_EQ(logins(camera), 1) << user << more;
    }
}

TEST(ReceiverLogin, NoCameraGetsMoreThanThreeWrongLogins)
{
    for (const std::string refusing : {"DESCRIBE", "PLAY"}) {
        int nonce = 0;
        std::atomic<int> wrong = 0;
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            if (request.method == "OPTIONS" ||
                (request.method != refusing && isRight(request, {}, "1")))
                return false;
            wrong += request.method == refusing && !request.header("authorization").empty();
            connection.answer(
                request, "401 Unauthorized",
                challenge({}, request.method == refusing ? "n" + std::to_string(++nonce) : "1"));
            return true;
        }});
        const rtsp::StreamRequest request{
            .url = camera.url(), .username = "admin", .password = "secret"};
        for (int i = 0; i < 6; ++i) {
            Viewer viewer(request); // each with the same policy
            viewer.start();
            EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
        }
        EXPECT_EQ(wrong, 3) << refusing;
        request.login->userAsked();
        Viewer viewer(request);
        viewer.start();
        EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
        EXPECT_EQ(wrong, 4) << refusing;
    }
}

TEST(ReceiverLogin, WithoutALoginNothingIsAnswered)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        connection.answer(request, "401 Unauthorized", challenge({}, "1"));
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
    EXPECT_EQ(camera.requests().size(), 1u);
}

TEST(ReceiverLogin, AStaleNonceIsNoRefusal)
{
    int valid = 0;
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        if (isRight(request, {}, std::to_string(valid))) {
            ++valid; // good for one request
            return false;
        }
        connection.answer(request, "401 Unauthorized",
                          challenge({}, std::to_string(valid), valid > 0 ? ", stale=TRUE" : ""));
        return true;
    }});
    Viewer viewer(camera.url(), "admin", "secret");
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
}

TEST(ReceiverLogin, NoncesThatAreAlwaysStaleHaveABound)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        connection.answer(request, "401 Unauthorized", challenge({}, "1", ", stale=true"));
        return true;
    }});
    Viewer viewer(camera.url(), "admin", "secret");
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
    EXPECT_LE(camera.requests().size(), 4u);
}

TEST(ReceiverLogin, TheConnectionMayEndWithTheChallenge)
{
    for (const bool announced : {false, true}) {
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            if (isRight(request, {}, "1"))
                return false;
            connection.answer(request, "401 Unauthorized",
                              challenge({}, "1") + (announced ? "Connection: Close\r\n" : ""));
            connection.close();
            return true;
        }});
        Viewer viewer(camera.url(), "admin", "secret");
        viewer.start();
        EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
        EXPECT_EQ(camera.connectionCount(), 2);
    }
}

TEST(ReceiverLogin, NoPasswordInClearToACameraThatOfferedBetter)
{
    std::atomic<bool> offersDigest = true;
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        if (isRight(request, {}, "1"))
            return false;
        connection.answer(request, "401 Unauthorized",
                          offersDigest ? challenge({}, "1")
                                       : "WWW-Authenticate: Basic realm=\"camera\"\r\n");
        return true;
    }});
    Viewer viewer(camera.url(), "admin", "secret");
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(5));
    viewer.close();
    offersDigest = false;
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
    for (const Request &request : camera.requests())
        EXPECT_THAT(request.header("authorization"), Not(HasSubstr("Basic")));
}

TEST(ReceiverLogin, BasicWhereNothingElseIsOffered)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        const bool right = request.header("authorization") == "Basic YWRtaW46c2VjcmV0";
        if (!right)
            connection.answer(request, "401 Unauthorized",
                              "WWW-Authenticate: Basic realm=\"camera\"\r\n");
        return !right;
    }});
    Viewer viewer(camera.url(), "admin", "secret");
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
}

TEST(ReceiverLogin, AHostThatTheCameraRedirectsToGetsNoPasswordInClear)
{
    ScriptedCamera target({.script = [](const Request &request, Connection &connection) {
        connection.answer(request, "401 Unauthorized",
                          "WWW-Authenticate: Basic realm=\"camera\"\r\n");
        return true;
    }});
    const std::string there = "rtsp://localhost:" + std::to_string(target.port()) + "/x";
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        connection.answer(request, "302 Moved", "Location: " + there + "\r\n");
        return true;
    }});
    Viewer viewer(camera.url(), "admin", "secret");
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Refused);
    EXPECT_EQ(logins(target), 0);
    EXPECT_EQ(target.requests().size(), 1u);
}

} // namespace
