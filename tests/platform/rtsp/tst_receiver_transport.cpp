#include "platform/base/known_keys.h"
#include "tests/platform/rtsp/http_front.h"
#include "tests/platform/rtsp/scripted_camera.h"
#include "tests/platform/rtsp/tls_front.h"
#include "tests/platform/rtsp/viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>

using rtsp::StreamEnd;
using rtsp::StreamRequest;
using rtsp::Transport;
using testing::HasSubstr;
using Behaviour = ScriptedCamera::Behaviour;
using Connection = ScriptedCamera::Connection;
using Request = ScriptedCamera::Request;

namespace {

using namespace std::chrono_literals;

bool isTcp(const Request &request)
{
    return request.header("transport").find("/TCP") != std::string::npos;
}

bool usesTcp(const Connection &connection, const ScriptedCamera &camera)
{
    for (const Request &request : camera.requests("SETUP"))
        if (request.connection == connection.number())
            return isTcp(request);
    return false;
}

StreamRequest over(Transport transport, const std::string &url)
{
    StreamRequest request{.url = url};
    request.transport = transport;
    return request;
}

void expectUdp(const ScriptedCamera &camera, Viewer &viewer)
{
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    EXPECT_TRUE(viewer.receiver().isUdp());
    EXPECT_EQ(viewer.descriptions(), 1);
    EXPECT_EQ(viewer.playCount(), 1);
    viewer.close();
    EXPECT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
    EXPECT_EQ(camera.requests().back().method, "TEARDOWN");
}

TEST(ReceiverTransport, UdpAloneIsAskedForAtOnce)
{
    for (const bool ipv6 : {false, true}) {
        ScriptedCamera camera({.ipv6 = ipv6});
        Viewer viewer(over(Transport::Udp, camera.url()));
        expectUdp(camera, viewer);
        const std::vector<Request> requests = camera.requests("SETUP");
        ASSERT_EQ(requests.size(), 2u);
        const std::string transport = requests[0].header("transport");
        ASSERT_TRUE(transport.starts_with("RTP/AVP;unicast;client_port=")) << transport;
        int first = 0;
        int second = 0;
        ASSERT_EQ(sscanf(transport.c_str() + 28, "%d-%d", &first, &second), 2);
        EXPECT_EQ(first % 2, 0);
        EXPECT_EQ(second, first + 1);
        EXPECT_NE(requests[1].header("transport"), transport);
    }
}

TEST(ReceiverTransport, UdpIsTriedWhereSetupOverTcpIsRefused)
{
    for (const int status : {400, 403, 404, 406, 451, 454, 461, 500, 501, 503}) {
        ScriptedCamera camera({.script = [status](const Request &request, Connection &connection) {
            const bool refused = request.method == "SETUP" && isTcp(request);
            if (refused)
                connection.answer(request, std::to_string(status) + " No");
            return refused;
        }});
        Viewer viewer(camera.url());
        expectUdp(camera, viewer);
        EXPECT_TRUE(isTcp(camera.requests("SETUP").front()));
        EXPECT_EQ(camera.connectionCount(), 1) << status;
    }
}

TEST(ReceiverTransport, UdpIsTriedWherePlayOverTcpIsRefused)
{
    for (const int status : {403, 406, 461, 501, 503}) {
        std::atomic<const ScriptedCamera *> self = nullptr;
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            const bool refused = request.method == "PLAY" && usesTcp(connection, *self);
            if (refused)
                connection.answer(request, std::to_string(status) + " No");
            return refused;
        }});
        self = &camera;
        Viewer viewer(camera.url());
        expectUdp(camera, viewer);
        EXPECT_EQ(camera.connectionCount(), 2) << status;
        EXPECT_EQ(camera.requests("TEARDOWN").size(), 2u);
    }
}

TEST(ReceiverTransport, UdpIsTriedWhereTheCameraClosesAtSetupOrPlay)
{
    for (const char *method : {"SETUP", "PLAY"}) {
        std::atomic<const ScriptedCamera *> self = nullptr;
        ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
            const bool closes = request.method == method && usesTcp(connection, *self);
            if (closes)
                connection.close();
            return closes;
        }});
        self = &camera;
        Viewer viewer(camera.url());
        expectUdp(camera, viewer);
    }
}

TEST(ReceiverTransport, UdpIsTriedWhereNothingComesOverTcp)
{
    std::atomic<const ScriptedCamera *> self = nullptr;
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        if (request.method != "PLAY" || !usesTcp(connection, *self))
            return false;
        connection.answer(request, "200 OK", "Session: 12345678\r\n");
        return true;
    }});
    self = &camera;
    Viewer viewer(camera.url());
    expectUdp(camera, viewer);
    EXPECT_EQ(camera.connectionCount(), 2);
}

TEST(ReceiverTransport, ACameraThatAnswersWithUdpIsAskedForIt)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        const bool odd = request.method == "SETUP" && isTcp(request);
        if (odd)
            connection.answer(request, "200 OK",
                              "Session: 12345678\r\n"
                              "Transport: RTP/AVP;unicast;client_port=0-1;server_port=2-3\r\n");
        return odd;
    }});
    Viewer viewer(camera.url());
    expectUdp(camera, viewer);
}

TEST(ReceiverTransport, TcpAloneIsNotLeft)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method == "SETUP")
            connection.answer(request, "461 Unsupported Transport");
        return request.method == "SETUP";
    }});
    Viewer viewer(over(Transport::Interleaved, camera.url()));
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::PathRefused);
    EXPECT_EQ(camera.requests("SETUP").size(), 1u);
}

TEST(ReceiverTransport, TheReasonIsThatOfTheFirstTransport)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method != "SETUP")
            return false;
        connection.answer(request, isTcp(request) ? "503 Unavailable" : "461 Unsupported");
        return true;
    }});
    Viewer viewer(camera.url());
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::PathRefused);
    EXPECT_THAT(viewer.text(), HasSubstr("503"));
}

TEST(ReceiverTransport, UdpThatStopsIsAStall)
{
    ScriptedCamera camera({.script = [](const Request &request, Connection &connection) {
        if (request.method != "PLAY")
            return false;
        connection.answer(request, "200 OK", "Session: 12345678\r\n");
        for (int i = 0; i < 5; ++i)
            connection.sendFrame();
        return true;
    }});
    Viewer viewer(over(Transport::Udp, camera.url()));
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Stalled);
    EXPECT_GT(viewer.frames(), 0);
}

TEST(ReceiverTransport, PlaysOverTls)
{
    ScriptedCamera camera;
    TlsFront front(camera.port());
    const std::string url = "rtsps://127.0.0.1:" + std::to_string(front.port()) + "/live";
    Viewer viewer(url);
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(20)) << viewer.text();
    viewer.close();
    ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
    for (const Request &request : camera.requests())
        EXPECT_TRUE(request.url.starts_with(url)) << request.url;
    EXPECT_EQ(camera.methods().back(), "TEARDOWN");
}

TEST(ReceiverTransport, AnotherKeyIsRefusedUntilItIsTrusted)
{
    ScriptedCamera camera;
    auto front = std::make_unique<TlsFront>(camera.port());
    const int port = front->port();
    const std::string url = "rtsps://127.0.0.1:" + std::to_string(port) + "/live";
    Viewer viewer(url);
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(5)) << viewer.text();
    viewer.close();
    ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
    front.reset();
    const size_t asked = camera.requests().size();

    front = std::make_unique<TlsFront>(camera.port(), TlsFront::Key::Second, port);
    Viewer careful(url, "user", "secret");
    careful.start();
    EXPECT_EQ(careful.waitForEnd(), StreamEnd::KeyChanged);
    EXPECT_THAT(careful.text(), HasSubstr("key"));
    EXPECT_EQ(camera.requests().size(), asked) << "nothing is told to a stranger";

    EXPECT_TRUE(base::KnownKeys::instance().hasChanged("127.0.0.1"));
    EXPECT_TRUE(base::KnownKeys::instance().trustChanged("127.0.0.1"));
    Viewer trusting(url);
    trusting.start();
    EXPECT_TRUE(trusting.waitForFrames(5)) << trusting.text();
}

TEST(ReceiverTransport, ARedirectionDoesNotLeaveTls)
{
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        connection.answer(request, "302 Moved", "Location: rtsp://127.0.0.1:1/live\r\n");
        return true;
    }});
    TlsFront front(camera.port());
    Viewer viewer("rtsps://127.0.0.1:" + std::to_string(front.port()) + "/live");
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::PathRefused);
    EXPECT_THAT(viewer.text(), HasSubstr("unencrypted"));
}

void expectTunnel(const ScriptedCamera &camera, const HttpFront &front, Viewer &viewer)
{
    viewer.start();
    ASSERT_TRUE(viewer.waitForFrames(10)) << viewer.text();
    viewer.close();
    ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));
    EXPECT_EQ(camera.methods(), (std::vector<std::string>{"OPTIONS", "DESCRIBE", "SETUP", "SETUP",
                                                          "PLAY", "TEARDOWN"}));
    const std::string url = "rtsp://127.0.0.1:" + std::to_string(front.port()) + "/live?x=1";
    EXPECT_EQ(camera.requests().front().url, url);
    EXPECT_THAT(camera.requests("SETUP").front().header("transport"), HasSubstr("/TCP"));
    const std::vector<std::string> requests = front.requests();
    const std::string &get = requests[requests.size() - 2];
    const std::string &post = requests.back();
    EXPECT_TRUE(get.starts_with("GET /live?x=1 HTTP/1.0\r\n")) << get;
    EXPECT_TRUE(post.starts_with("POST /live?x=1 HTTP/1.0\r\n")) << post;
    EXPECT_THAT(get, HasSubstr("\r\nAccept: application/x-rtsp-tunnelled\r\n"));
    EXPECT_THAT(post, HasSubstr("\r\nContent-Type: application/x-rtsp-tunnelled\r\n"));
}

TEST(ReceiverTransport, PlaysThroughAWebServer)
{
    ScriptedCamera camera;
    HttpFront front(camera.port());
    Viewer viewer("http://127.0.0.1:" + std::to_string(front.port()) + "/live?x=1");
    expectTunnel(camera, front, viewer);
    EXPECT_EQ(front.requests().size(), 2u);
}

TEST(ReceiverTransport, PlaysThroughAWebServerWithALogin)
{
    ScriptedCamera camera;
    HttpFront front(camera.port(), "Basic YWRtaW46c2VjcmV0");
    const std::string url = "http://127.0.0.1:" + std::to_string(front.port()) + "/live?x=1";
    Viewer viewer(url, "admin", "secret");
    expectTunnel(camera, front, viewer);
    EXPECT_EQ(front.requests().size(), 3u);
    Viewer stranger(url, "admin", "wrong");
    stranger.start();
    EXPECT_EQ(stranger.waitForEnd(), StreamEnd::Refused);
    EXPECT_EQ(front.requests().size(), 5u);
}

TEST(ReceiverTransport, AWebServerMayCloseOrBeNone)
{
    ScriptedCamera camera; // knows no HTTP
    Viewer viewer("http://127.0.0.1:" + std::to_string(camera.port()) + "/live");
    ScriptedCamera closing({.script = [](const Request &, Connection &connection) {
        connection.close();
        return true;
    }});
    Viewer other("http://127.0.0.1:" + std::to_string(closing.port()) + "/live");
    viewer.start();
    other.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::PathRefused);
    EXPECT_EQ(other.waitForEnd(), StreamEnd::PathRefused);
}

TEST(ReceiverTransport, PacketsOfStrangersAreNotTaken)
{
    std::atomic<int> clientPort = 0;
    ScriptedCamera camera({.script = [&](const Request &request, Connection &connection) {
        if (request.method == "SETUP" && clientPort == 0)
            clientPort = std::atoi(request.header("transport").c_str() + 28);
        if (request.method != "PLAY")
            return false;
        // 127.0.0.2 is another host.
        const int handle = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK + 1);
        ::bind(handle, reinterpret_cast<sockaddr *>(&address), sizeof address);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(clientPort));
        const std::string packet("\x80\xe0\x00\x01\x00\x00\x00\x00\x00\x00\x00\x01\x65\x88\x84",
                                 15);
        for (int i = 0; i < 50; ++i)
            ::sendto(handle, packet.data(), packet.size(), 0,
                     reinterpret_cast<sockaddr *>(&address), sizeof address);
        ::close(handle);
        connection.answer(request, "200 OK", "Session: 12345678\r\n");
        return true;
    }});
    Viewer viewer(over(Transport::Udp, camera.url()));
    viewer.start();
    EXPECT_EQ(viewer.waitForEnd(), StreamEnd::Stalled);
    EXPECT_EQ(viewer.frames(), 0);
    EXPECT_NE(clientPort, 0);
}

} // namespace
