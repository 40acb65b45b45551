#include "platform/rtsp/open_session.h"
#include "platform/rtsp/rtsp_probe.h"
#include "tests/platform/rtsp/scripted_camera.h"
#include "tests/platform/rtsp/viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <future>

using rtsp::StreamEnd;
using rtsp::StreamRequest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using Behaviour = ScriptedCamera::Behaviour;
using Connection = ScriptedCamera::Connection;
using Request = ScriptedCamera::Request;

namespace {

using namespace std::chrono_literals;

std::chrono::milliseconds since(std::chrono::steady_clock::time_point begin)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                                 begin);
}

/// Plays a camera until the tenth frame and closes.
void playAndClose(const ScriptedCamera &camera, Viewer &viewer)
{
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    viewer.close();
    ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
}

TEST(Receiver, PlaysAndSaysGoodbye)
{
    ScriptedCamera camera;
    Viewer viewer(camera.url());
    playAndClose(camera, viewer);
    EXPECT_THAT(camera.methods(),
                ElementsAre("OPTIONS", "DESCRIBE", "SETUP", "SETUP", "PLAY", "TEARDOWN"));
    EXPECT_EQ(camera.connectionCount(), 1);
    const std::vector<Request> requests = camera.requests();
    EXPECT_EQ(requests[0].text,
              "OPTIONS " + camera.url() + " RTSP/1.0\r\nCSeq: 1\r\nUser-Agent: Zelvaro\r\n\r\n");
    EXPECT_EQ(requests[1].text,
              "DESCRIBE " + camera.url() +
                  " RTSP/1.0\r\nCSeq: 2\r\nUser-Agent: Zelvaro\r\nAccept: application/sdp\r\n\r\n");
    EXPECT_EQ(requests[2].text, "SETUP " + camera.url() +
                                    "/track1 RTSP/1.0\r\nCSeq: 3\r\nUser-Agent: Zelvaro\r\n"
                                    "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n\r\n");
    EXPECT_EQ(requests[3].text,
              "SETUP " + camera.url() +
                  "/track2 RTSP/1.0\r\nCSeq: 4\r\nUser-Agent: Zelvaro\r\n"
                  "Transport: RTP/AVP/TCP;unicast;interleaved=2-3\r\nSession: 12345678\r\n\r\n");
    EXPECT_EQ(requests[4].text,
              "PLAY " + camera.url() +
                  " RTSP/1.0\r\nCSeq: 5\r\nUser-Agent: Zelvaro\r\nRange: npt=0.000-\r\n"
                  "Session: 12345678\r\n\r\n");
    EXPECT_EQ(requests[5].url, camera.url());
    EXPECT_EQ(requests[5].header("session"), "12345678");
    EXPECT_EQ(viewer.descriptions(), 1);
    EXPECT_TRUE(viewer.hasVideo());
    EXPECT_TRUE(viewer.hasAudio());
    EXPECT_EQ(viewer.playCount(), 1);
    EXPECT_EQ(viewer.ends(), 0);
}

TEST(Receiver, PlaysOverIpv6)
{
    ScriptedCamera camera({.ipv6 = true});
    Viewer viewer(camera.url());
    playAndClose(camera, viewer);
}

TEST(Receiver, SetsUpNoSoundThatNobodyWants)
{
    ScriptedCamera camera;
    StreamRequest request{.url = camera.url()};
    request.wantsAudio = false;
    Viewer viewer(request);
    playAndClose(camera, viewer);
    EXPECT_EQ(camera.requests("SETUP").size(), 1u);
    EXPECT_TRUE(viewer.hasAudio());
}

TEST(Receiver, SoundThatCannotBeSetUpEndsNothing)
{
    for (const char *status : {"404 Not Found", "461 Unsupported Transport", "500 Error", ""}) {
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            if (request.method != "SETUP" || request.url.find("track2") == std::string::npos)
                return false;
            if (*status)
                connection.answer(request, status);
            else
                connection.close();
            return true;
        }});
        Viewer viewer(camera.url());
        playAndClose(camera, viewer);
        EXPECT_THAT(camera.requests("SETUP").front().header("transport"), HasSubstr("/TCP"));
    }
}

TEST(Receiver, TellsWhatVideoItCannotPlay)
{
    ScriptedCamera camera({.description = "v=0\r\ns=x\r\nt=0 0\r\nm=video 0 RTP/AVP 96\r\n"
                                          "a=rtpmap:96 VP8/90000\r\nm=audio 0 RTP/AVP 0\r\n"});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::UnknownCodec);
    EXPECT_EQ(viewer.failure().codec, "VP8");
    EXPECT_THAT(viewer.text(), HasSubstr("VP8"));
    EXPECT_FALSE(viewer.hasVideo());
    EXPECT_TRUE(viewer.hasAudio());
    ASSERT_TRUE(viewer.sound());
    EXPECT_EQ(viewer.sound()->codec, base::AudioCodec::Pcmu);
    EXPECT_EQ(viewer.sound()->rate, 8000);
    EXPECT_THAT(camera.methods(), ElementsAre("OPTIONS", "DESCRIBE"));
}

TEST(Receiver, TellsWhyACameraDoesNotPlayAPath)
{
    const std::vector<std::pair<std::string, StreamEnd>> answers = {
        {"401 Unauthorized", StreamEnd::Refused},    {"404 Not Found", StreamEnd::NotFound},
        {"400 Bad Request", StreamEnd::PathRefused}, {"403 Forbidden", StreamEnd::PathRefused},
        {"454 No Session", StreamEnd::PathRefused},  {"500 Error", StreamEnd::PathRefused},
        {"503 Unavailable", StreamEnd::PathRefused}, {"551 Option", StreamEnd::PathRefused},
        {"200 OK", StreamEnd::PathRefused}};
    for (const auto &[status, reason] : answers) {
        ScriptedCamera camera(
            {.script = [&, text = status](const Request &request, Connection &connection) {
                if (request.method == "DESCRIBE")
                    connection.answer(request, text);
                return request.method == "DESCRIBE";
            }});
        Viewer viewer(camera.url());
        viewer.start();
        EXPECT_EQ(viewer.waitForEnd(), reason) << status;
        EXPECT_EQ(viewer.ends(), 1);
        EXPECT_FALSE(viewer.text().empty());
        EXPECT_THAT(camera.methods(), ElementsAre("OPTIONS", "DESCRIBE"));
    }
}

TEST(Receiver, AClosedPortFails)
{
    Viewer viewer("rtsp://127.0.0.1:1/live");
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Rejected);
}

TEST(Receiver, OnlyAddressesOfStreamsAreTaken)
{
    for (const char *url : {"", "live", "ftp://127.0.0.1/x", "rtsp://", "rtsp://a b/c"}) {
        Viewer viewer(url);
        viewer.start();
        EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Failed) << url;
    }
}

TEST(Receiver, OptionsMayBeRefusedOrEndTheConnection)
{
    for (const char *status : {"400 Bad Request", "501 Not Implemented", ""}) {
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            if (request.method != "OPTIONS")
                return false;
            if (*status)
                connection.answer(request, status);
            else
                connection.close();
            return true;
        }});
        Viewer viewer(camera.url());
        playAndClose(camera, viewer);
    }
}

TEST(Receiver, OptionsMayGoUnanswered)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &) {
        return request.method == "OPTIONS";
    }});
    Viewer viewer(camera.url());
    playAndClose(camera, viewer);
    EXPECT_EQ(camera.connectionCount(), 2);
}

TEST(Receiver, ASilentCameraFailsAndAClosingOneDoesNotPlayThePath)
{
    ScriptedCamera silent({.script = [](const Request &, Connection &) { return true; }});
    ScriptedCamera closing({.script =
                                [](const Request &request, Connection &connection) {
                                    if (request.method == "DESCRIBE")
                                        connection.close();
                                    return request.method == "DESCRIBE";
                                }});
    ScriptedCamera quiet({.script = [](const Request &request, Connection &) {
        return request.method == "DESCRIBE";
    }});
    Viewer first(silent.url());
    Viewer second(closing.url());
    Viewer third(quiet.url());
    for (Viewer *viewer : {&first, &second, &third})
        viewer->start();
    EXPECT_EQ(second.waitForEnd(), StreamEnd::PathRefused);
    EXPECT_EQ(third.waitForEnd(), StreamEnd::PathRefused);
    EXPECT_EQ(first.waitForEnd(), StreamEnd::Silent);
}

TEST(Receiver, TriesTheOtherWayToJoinTheControlAddress)
{
    for (const int status : {400, 404, 451, 454, 455, 459, 500}) {
        Behaviour behaviour;
        behaviour.script = [status](const Request &request, Connection &connection) {
            if (request.method != "SETUP" || request.url.ends_with("?ch=1"))
                return false;
            connection.answer(request, std::to_string(status) + " No");
            return true;
        };
        ScriptedCamera camera(behaviour);
        Viewer viewer(camera.url("/live?ch=1"));
        playAndClose(camera, viewer);
        const std::vector<Request> requests = camera.requests("SETUP");
        ASSERT_EQ(requests.size(), 3u);
        EXPECT_EQ(requests[0].url, camera.url("/live?ch=1/track1"));
        EXPECT_EQ(requests[1].url, camera.url("/live/track1?ch=1"));
        EXPECT_EQ(requests[2].url, camera.url("/live/track2?ch=1"));
        EXPECT_THAT(requests[1].header("transport"), HasSubstr("/TCP"));
        EXPECT_EQ(camera.connectionCount(), 1);
    }
}

TEST(Receiver, TriesTheOtherWayToJoinWithAServerThatClosesAtTheFirst)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method == "SETUP" && !request.url.ends_with("?ch=1"))
            connection.close();
        return request.method == "SETUP" && !request.url.ends_with("?ch=1");
    }});
    Viewer viewer(camera.url("/live?ch=1"));
    playAndClose(camera, viewer);
    EXPECT_EQ(camera.connectionCount(), 2);
    EXPECT_EQ(viewer.descriptions(), 1);
    EXPECT_FALSE(viewer.receiver().isUdp());
}

TEST(Receiver, TriesOtherAddressesForPlay)
{
    Behaviour behaviour;
    behaviour.describeHeaders = "Content-Base: rtsp://127.0.0.1/else/\r\n";
    behaviour.script = [](const Request &request, Connection &connection) {
        const bool wrong = request.method == "PLAY" && request.url.ends_with("/else/");
        if (wrong)
            connection.answer(request, "454 Session Not Found");
        return wrong;
    };
    ScriptedCamera camera(behaviour);
    Viewer viewer(camera.url());
    playAndClose(camera, viewer);
    EXPECT_EQ(camera.requests("SETUP").front().url, "rtsp://127.0.0.1/else/track1");
    EXPECT_EQ(camera.requests("PLAY").back().url, camera.url());
    EXPECT_EQ(camera.requests("TEARDOWN").back().url, camera.url());
}

TEST(Receiver, TakesControlsAsTheyCome)
{
    struct Case
    {
        std::string control;
        std::string session;
        std::string setUp;
        std::string play;
    };
    const std::vector<Case> cases = {{"rtsp://10.1.2.3/x/track1", "rtsp://10.1.2.3/x",
                                      "rtsp://10.1.2.3/x/track1", "rtsp://10.1.2.3/x"},
                                     {"*", "*", "URL", "URL"},
                                     {"", "", "URL", "URL"},
                                     {"trackID=0?a=b c", "*", "URL/trackID=0?a=b%20c", "URL"},
                                     {"/abs", "*", "URL/abs", "URL"}};
    for (const Case &each : cases) {
        ScriptedCamera camera(
            {.description = ScriptedCamera::goodDescription(each.control, "track2", each.session)});
        const auto whole = [&](std::string text) {
            if (text.starts_with("URL"))
                text.replace(0, 3, camera.url());
            return text;
        };
        Viewer viewer(camera.url());
        playAndClose(camera, viewer);
        EXPECT_EQ(camera.requests("SETUP").front().url, whole(each.setUp));
        EXPECT_EQ(camera.requests("PLAY").front().url, whole(each.play));
    }
}

TEST(Receiver, TakesSessionIdsAsTheyCome)
{
    ScriptedCamera camera({.session = "  a$b-c.d_e+f  ; timeout = 30;x=y "});
    Viewer viewer(camera.url());
    playAndClose(camera, viewer);
    EXPECT_EQ(camera.requests("PLAY").front().header("session"), "a$b-c.d_e+f");
    EXPECT_EQ(camera.requests("TEARDOWN").front().header("session"), "a$b-c.d_e+f");
}

TEST(Receiver, AnswersMayLackNearlyEverything)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        const std::string body = ScriptedCamera::goodDescription();
        if (request.method == "DESCRIBE")
            connection.write("RTSP/1.0 200 OK\r\nContent-length: " + std::to_string(body.size()) +
                             "\r\n\r\n" + body);
        else
            connection.write("RTSP/1.0 200 OK\r\n\r\n");
        connection.play(request.method == "PLAY");
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
}

TEST(Receiver, AnswersMayAllHaveTheSameNumber)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        Request wrong = request;
        wrong.text = "X\r\nCSeq: 0\r\n" + request.text;
        connection.answerWell(wrong);
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
}

TEST(Receiver, TheCameraChoosesTheChannels)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method != "SETUP")
            return false;
        const bool video = request.url.ends_with("track1");
        connection.setChannel(6);
        connection.answer(request, "200 OK",
                          "Session: 1\r\nTransport: RTP/AVP/TCP;unicast;interleaved=" +
                              std::string(video ? "6-7" : "8-9") + "\r\n");
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5));
    ASSERT_TRUE(camera.waitFor([&] { return !camera.reports().empty(); }));
    const int channel = camera.reports().front().first;
    EXPECT_TRUE(channel == 7 || channel == 9) << channel;
}

TEST(Receiver, MediaMayComeBeforeTheAnswerToPlay)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method != "PLAY")
            return false;
        for (int i = 0; i < 3; ++i)
            connection.sendFrame();
        connection.answerWell(request);
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(10));
    EXPECT_EQ(viewer.playCount(), 1);
}

TEST(Receiver, PlayMayGoUnansweredWhenMediaCome)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        connection.play(request.method == "PLAY");
        return request.method == "PLAY";
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(500)); // 10 s: behind the time limit of the answer
    EXPECT_EQ(viewer.playCount(), 1);
    EXPECT_EQ(camera.connectionCount(), 1);
}

TEST(Receiver, APlayRangeThatIsInvalidIsLeftOut)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        const bool refused = !request.header("range").empty();
        if (refused)
            connection.answer(request, "457 Invalid Range");
        return refused;
    }});
    Viewer viewer(camera.url());
    playAndClose(camera, viewer);
    EXPECT_EQ(camera.requests("PLAY").size(), 2u);
}

TEST(Receiver, MediaMayComeLate)
{
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        if (request.method != "PLAY")
            return false;
        connection.answer(request, "200 OK", "Session: 12345678\r\n");
        connection.playLate(8s);
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
    EXPECT_EQ(camera.connectionCount(), 1);
    EXPECT_EQ(camera.requests("PLAY").size(), 1u);
}

TEST(Receiver, RtpInfoIsNotBelieved)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method != "PLAY")
            return false;
        connection.answer(request, "200 OK",
                          "Session: 12345678\r\nRTP-Info: url=track1;seq=1;rtptime=0\r\n");
        connection.play();
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5));
}

TEST(Receiver, AnswersTheCamerasRequests)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method == "PLAY")
            connection.write("OPTIONS * RTSP/1.0\r\nCSeq: 77\r\n\r\n"
                             "REDIRECT rtsp://x RTSP/1.0\r\nCSeq: 78\r\n\r\n");
        return false;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5));
    ASSERT_TRUE(camera.waitFor([&] { return camera.requests().size() >= 7; }));
    const std::vector<Request> requests = camera.requests();
    const auto answer = [&](const std::string &text) {
        return std::any_of(requests.begin(), requests.end(),
                           [&](const Request &request) { return request.text == text; });
    };
    EXPECT_TRUE(answer("RTSP/1.0 200 OK\r\nCSeq: 77\r\n\r\n"));
    EXPECT_TRUE(answer("RTSP/1.0 501 Not Implemented\r\nCSeq: 78\r\n\r\n"));
}

TEST(Receiver, AStallAndACloseAreTold)
{
    for (const bool closes : {false, true}) {
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            if (request.method != "PLAY")
                return false;
            connection.answer(request, "200 OK", "Session: 12345678\r\n");
            for (int i = 0; i < 10; ++i)
                connection.sendFrame();
            if (closes)
                connection.close();
            return true;
        }});
        Viewer viewer(camera.url());
        const auto begin = std::chrono::steady_clock::now();
        viewer.start();
        EXPECT_EQ(viewer.waitForEnd(), closes ? StreamEnd::Closed : StreamEnd::Stalled);
        EXPECT_EQ(viewer.frames(), 10);
        if (!closes) {
            EXPECT_GE(since(begin), 5s);
            EXPECT_LE(since(begin), 8s);
        }
        EXPECT_EQ(camera.connectionCount(), 1);
    }
}

TEST(Receiver, ClosesAtOnceInTheMiddleOfAPacket)
{
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        if (request.method != "PLAY")
            return request.method == "TEARDOWN";
        connection.answer(request, "200 OK", "Session: 12345678\r\n");
        connection.sendFrame();
        connection.write({"$\x00\x05\x00half", 8});
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(1));
    const auto begin = std::chrono::steady_clock::now();
    viewer.close();
    EXPECT_LT(since(begin), 50ms);
    ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
    EXPECT_LT(since(begin), 1s);
    EXPECT_EQ(camera.requests("TEARDOWN").size(), 1u);
    EXPECT_EQ(viewer.ends(), 0);
}

TEST(Receiver, MayBeClosedOrDestroyedAtAnyTime)
{
    ScriptedCamera camera;
    for (int i = 0; i < 100; ++i) {
        Viewer viewer(camera.url());
        viewer.start();
        const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(50 * i);
        while (std::chrono::steady_clock::now() < until)
            std::this_thread::yield();
        if (i % 2)
            viewer.close();
    }
    EXPECT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
}

TEST(Receiver, MayBeClosedByItsClientAndStartedAgain)
{
    ScriptedCamera camera;
    Viewer viewer(camera.url());
    viewer.onFrame([&] { viewer.receiver().close(); });
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(1));
    ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
    EXPECT_EQ(viewer.frames(), 1);
    viewer.onFrame({});
    viewer.start();
    EXPECT_TRUE(viewer.waitForFrames(5));
    EXPECT_EQ(viewer.ends(), 0);
}

TEST(Receiver, FollowsRedirections)
{
    ScriptedCamera target;
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        if (request.method != "DESCRIBE")
            return false;
        const int hop = static_cast<int>(request.url.back() - '0');
        connection.answer(
            request, "302 Moved Temporarily",
            "Location: " + (hop < 4 ? "/hop" + std::to_string(hop + 1) : target.url("/there")) +
                "\r\n");
        return true;
    }});
    Viewer viewer(camera.url("/hop1"));
    playAndClose(target, viewer);
    EXPECT_EQ(target.requests("DESCRIBE").front().url, target.url("/there"));
    EXPECT_EQ(camera.requests("DESCRIBE").size(), 4u);
}

TEST(Receiver, RedirectionsHaveABound)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        connection.answer(request, "301 Moved", "Location: " + request.url + "\r\n");
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::PathRefused);
    EXPECT_EQ(camera.requests().size(), 6u);
}

TEST(Receiver, KeepsTheSessionAliveByWhatTheCameraKnows)
{
    for (const bool listed : {false, true}) {
        Behaviour behaviour;
        behaviour.session = "1;timeout=2";
        if (!listed)
            behaviour.publicMethods = "OPTIONS, DESCRIBE, SETUP, TEARDOWN, PLAY";
        ScriptedCamera camera(behaviour);
        Viewer viewer(camera.url());
        viewer.start();
        const std::string method = listed ? "GET_PARAMETER" : "OPTIONS";
        ASSERT_TRUE(camera.waitFor([&] { return camera.requests().size() >= 8; }));
        const std::vector<Request> requests = camera.requests();
        for (size_t i = 5; i < 8; ++i) {
            EXPECT_EQ(requests[i].method, method);
            EXPECT_EQ(requests[i].url, camera.url());
            EXPECT_EQ(requests[i].header("session"), "1");
            EXPECT_EQ(requests[i].header("content-length"), "");
            EXPECT_GE(requests[i].time - requests[i - 1].time, 900ms);
        }
        EXPECT_TRUE(viewer.waitForFrames(100));
    }
}

TEST(Receiver, ChangesTheKeepAliveThatIsRefusedOrIgnored)
{
    for (const char *status : {"501 Not Implemented", "405 Method Not Allowed", ""}) {
        ScriptedCamera camera({.script =
                                   [&](const Request &request, Connection &connection) {
                                       if (request.method != "GET_PARAMETER")
                                           return false;
                                       if (*status)
                                           connection.answer(request, status);
                                       return true;
                                   },
                               .session = "1;timeout=2"});
        Viewer viewer(camera.url());
        viewer.start();
        ASSERT_TRUE(camera.waitFor([&] { return camera.requests("OPTIONS").size() >= 4; }));
        EXPECT_LE(camera.requests("GET_PARAMETER").size(), 2u);
        EXPECT_TRUE(viewer.waitForFrames(100));
        EXPECT_EQ(viewer.ends(), 0);
    }
}

TEST(Receiver, ASessionWithoutANameIsKeptAliveToo)
{
    ScriptedCamera camera({.session = ";timeout=2"});
    Viewer viewer(camera.url());
    viewer.start();
    ASSERT_TRUE(camera.waitFor([&] { return !camera.requests("GET_PARAMETER").empty(); }));
    const std::string text = camera.requests("GET_PARAMETER").front().text;
    EXPECT_THAT(text, Not(HasSubstr("Session")));
}

TEST(Receiver, ReportsWhatItReceives)
{
    ScriptedCamera camera;
    Viewer viewer(camera.url());
    viewer.start();
    ASSERT_TRUE(camera.waitFor([&] { return camera.reports().size() >= 2; }));
    for (const auto &[channel, report] : camera.reports()) {
        EXPECT_EQ(channel % 2, 1);
        ASSERT_GE(report.size(), 8u);
        EXPECT_EQ(static_cast<uint8_t>(report[1]), 201); // RR (RFC 3550 12.1)
    }
}

TEST(Receiver, TheConnectionMayEndBehindEachAnswer)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method != "DESCRIBE" && request.method != "OPTIONS")
            return false;
        connection.answer(request, "200 OK", "Connection: close\r\n",
                          request.method == "DESCRIBE" ? ScriptedCamera::goodDescription() : "");
        connection.close();
        return true;
    }});
    Viewer viewer(camera.url());
    playAndClose(camera, viewer);
    // A request may have reached the connection before its end did, and comes again.
    std::vector<std::string> methods;
    for (const Request &request : camera.requests())
        if (request.connection != 1 || request.method == "OPTIONS")
            methods.push_back(request.method);
    EXPECT_EQ(std::count(methods.begin(), methods.end(), "PLAY"), 1);
    EXPECT_EQ(methods.front(), "OPTIONS");
    EXPECT_EQ(methods.back(), "TEARDOWN");
    EXPECT_EQ(camera.connectionCount(), 3);
    EXPECT_FALSE(viewer.receiver().isUdp());
}

TEST(Receiver, MediaMayShareAChannelOrComeOnOthers)
{
    for (const bool shared : {true, false}) {
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            if (request.method != "SETUP")
                return false;
            const bool video = request.url.ends_with("track1");
            connection.setChannel(shared ? 0 : 10);
            connection.answer(request, "200 OK",
                              "Session: 1\r\nTransport: RTP/AVP/TCP;unicast;interleaved=" +
                                  std::string(video || shared ? "0-1" : "2-3") + "\r\n");
            return true;
        }});
        Viewer viewer(camera.url());
        viewer.start();
        EXPECT_TRUE(viewer.waitForFrames(5)) << viewer.text();
    }
}

TEST(Receiver, AGoodbyeEndsTheStream)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method != "PLAY")
            return false;
        connection.answer(request, "200 OK", "Session: 12345678\r\n");
        for (int i = 0; i < 5; ++i)
            connection.sendFrame();
        // A sender report must come first (RFC 3550 6.1).
        connection.sendPacket(1, {"\x80\xc8\x00\x06\x00\x00\x12\x34"
                                  "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
                                  "\x00\x00\x00\x00\x00\x00\x00\x00"
                                  "\x81\xcb\x00\x01\x00\x00\x12\x34",
                                  36});
        return true;
    }});
    Viewer viewer(camera.url());
    const auto begin = std::chrono::steady_clock::now();
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Closed);
    EXPECT_LT(since(begin), 4s);
}

/// A probe of the camera, and a viewer that goes on over its connection.
class HandOverTest : public testing::Test
{
protected:
    ~HandOverTest() override
    {
        Viewer::run([&] { m_probe.reset(); });
    }
    void probe(const ScriptedCamera &camera)
    {
        std::promise<rtsp::ProbeOutcome> outcome;
        const rtsp::ProbeTarget target{
            .endpoint = {.host = "127.0.0.1", .port = static_cast<uint16_t>(camera.port())},
            .url = camera.url(),
            .username = "admin",
            .password = "secret"};
        Viewer::run([&] {
            m_probe->start(target, [&](rtsp::ProbeOutcome value) { outcome.set_value(value); });
        });
        EXPECT_EQ(outcome.get_future().get(), rtsp::ProbeOutcome::Answered);
    }
    void startOver(Viewer &viewer, const std::string &url)
    {
        Viewer::run([&] {
            std::optional<rtsp::OpenSession> session = m_probe->takeSession(url);
            ASSERT_TRUE(session);
            viewer.receiver().start(std::move(*session));
        });
    }

    std::unique_ptr<rtsp::RtspProbe> m_probe = std::make_unique<rtsp::RtspProbe>();
};

TEST_F(HandOverTest, GoesOnOverTheConnectionOfAProbe)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        const bool proven =
            request.header("authorization").find("nonce=\"n1\"") != std::string::npos;
        if (!proven)
            connection.answer(request, "401 Unauthorized",
                              "WWW-Authenticate: Digest realm=\"c\", nonce=\"n1\"\r\n");
        return !proven;
    }});
    probe(camera);
    Viewer viewer(camera.url(), "admin", "secret");
    startOver(viewer, camera.url());
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    EXPECT_THAT(camera.methods(), ElementsAre("DESCRIBE", "DESCRIBE", "SETUP", "SETUP", "PLAY"));
    EXPECT_EQ(camera.connectionCount(), 1);
    EXPECT_EQ(camera.requests().back().header("cseq"), "5");
    EXPECT_EQ(viewer.descriptions(), 1);
    Viewer::run([&] { EXPECT_FALSE(m_probe->takeSession(camera.url())); });
    probe(camera);
    EXPECT_EQ(camera.connectionCount(), 2);
}

TEST_F(HandOverTest, ConnectsAnewWhenTheConnectionIsGone)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        const bool closes = request.method == "SETUP" && connection.number() == 1;
        if (closes)
            connection.close();
        return closes;
    }});
    probe(camera);
    Viewer viewer(camera.url(), "admin", "secret");
    startOver(viewer, camera.url());
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    EXPECT_EQ(camera.connectionCount(), 2);
    EXPECT_EQ(viewer.descriptions(), 1);
    EXPECT_FALSE(viewer.receiver().isUdp());
}

TEST_F(HandOverTest, AnotherStreamHasNoConnectionYet)
{
    ScriptedCamera camera;
    Viewer::run([&] { EXPECT_FALSE(m_probe->takeSession(camera.url())); });
    probe(camera);
    Viewer::run([&] { EXPECT_FALSE(m_probe->takeSession(camera.url("/other"))); });
}

} // namespace
