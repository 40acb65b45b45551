#include "platform/cammgr/command_batch.h"

#include "tests/support/tiny_server.h"

#include <gtest/gtest.h>

#include <future>

using cammgr::CommandBatch;
using cammgr::ioThread;
using Connection = TinyServer::Connection;
using Texts = std::vector<std::string>;
using namespace std::chrono_literals;

namespace {

std::string request(const std::string &command)
{
    return "GET /form/" + command + " HTTP/1.1\r\nAuthorization: Basic YWRtaW46c2VjcmV0\r\n\r\n";
}

std::string sized(const std::string &body)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

/// Runs one batch to its end.
Texts run(uint16_t port, const Texts &requests, std::chrono::milliseconds limit = 14s)
{
    std::promise<Texts> promise;
    std::future<Texts> replies = promise.get_future();
    std::unique_ptr<CommandBatch> batch;
    ioThread().postAndWait([&] {
        batch = std::make_unique<CommandBatch>();
        batch->start({.host = "127.0.0.1", .port = port, .tls = false}, requests, limit,
                     [&](Texts texts) { promise.set_value(std::move(texts)); });
    });
    const bool inTime = replies.wait_for(40s) == std::future_status::ready;
    EXPECT_TRUE(inTime);
    ioThread().postAndWait([&] { batch.reset(); });
    return inTime ? replies.get() : Texts();
}

Texts run(const TinyServer &server, const Texts &requests, std::chrono::milliseconds limit = 14s)
{
    return run(server.port(), requests, limit);
}

TEST(CommandBatch, SendsTheTextsByteForByteOnOneConnection)
{
    TinyServer server([](Connection &camera) {
        for (int i = 1; !camera.readRequest().empty(); ++i)
            camera.write(sized("000 Success\nWINDOW=" + std::to_string(i) + "\n"));
    });
    const Texts requests = {request("getMotion?WINDOW=1"), request("getMotion?WINDOW=2"),
                            request("getMotion?WINDOW=\xc3\xa4&=="), request("sysReboot")};
    EXPECT_EQ(run(server, requests), (Texts{"000 Success\nWINDOW=1\n", "000 Success\nWINDOW=2\n",
                                            "000 Success\nWINDOW=3\n", "000 Success\nWINDOW=4\n"}));
    EXPECT_EQ(server.requests(), requests);
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(CommandBatch, WaitsForEachReplyBeforeTheNextRequest)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write("HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n000 ");
        camera.write("Success\n");
        camera.readRequest();
        camera.write("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                     "5\r\n000 S\r\n7\r\nuccess\n\r\n0\r\n\r\n");
        camera.waitForEnd();
    });
    EXPECT_EQ(run(server, {request("a"), request("b")}), (Texts{"000 Success\n", "000 Success\n"}));
    EXPECT_EQ(server.connectionCount(), 1);
}

TEST(CommandBatch, ConnectsForEachRequestWhereTheCameraCloses)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write("HTTP/1.0 200 OK\r\n\r\n000 Success\nN=" + std::to_string(camera.number()));
    });
    EXPECT_EQ(run(server, {request("a"), request("b"), request("c")}),
              (Texts{"000 Success\nN=1", "000 Success\nN=2", "000 Success\nN=3"}));
    EXPECT_EQ(server.connectionCount(), 3);
}

TEST(CommandBatch, ARequestOnADroppedConnectionIsSentOnceMore)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write(sized("000 Success"));
        if (camera.number() == 1)
            camera.readRequest();
    });
    EXPECT_EQ(run(server, {request("a"), request("b")}), (Texts{"000 Success", "000 Success"}));
    EXPECT_EQ(server.connectionCount(), 2);
}

TEST(CommandBatch, TakesAnswersWithoutHead)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write("000 Success\n");
        camera.write("A=1\n");
        if (camera.number() == 2)
            camera.waitForEnd(); // keeps the connection open and says nothing more
    });
    EXPECT_EQ(run(server, {request("a"), request("b"), request("c")}),
              (Texts{"000 Success\nA=1\n", "000 Success\nA=1\n", "000 Success\nA=1\n"}));
}

TEST(CommandBatch, HandsBackErrorPagesAndNamesEmptyOnes)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write("HTTP/1.1 404 Not Found\r\nContent-Length: 4\r\n\r\noops");
        camera.readRequest();
        camera.write("HTTP/1.1 401 Unauthorized\r\nContent-Length: 0\r\n\r\n");
        camera.readRequest();
        camera.write(sized(""));
        camera.waitForEnd();
    });
    EXPECT_EQ(run(server, {request("a"), request("b"), request("c")}),
              (Texts{"oops", "401 refused by the camera", ""}));
}

TEST(CommandBatch, ACameraThatIsNotThereFailsEachRequest)
{
    const std::string &failed = CommandBatch::failureText();
    EXPECT_NE(failed, "");
    EXPECT_FALSE(failed.starts_with("000 Success"));
    EXPECT_EQ(run(closedPort(), {request("a"), request("b")}), (Texts{failed, failed}));
    EXPECT_EQ(run(0, {request("a"), request("b")}), (Texts{failed, failed}));
}

TEST(CommandBatch, ASilentCameraFailsEachRequestWithinTheLimit)
{
    TinyServer server([](Connection &camera) { camera.waitForEnd(); });
    const std::string &failed = CommandBatch::failureText();
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(run(server, {request("a"), request("b"), request("c"), request("d")}),
              (Texts{failed, failed, failed, failed}));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 25s) << "14 s on an idle machine";
}

TEST(CommandBatch, KeepsTheRepliesThatCameBeforeTheCameraFellSilent)
{
    TinyServer server([](Connection &camera) {
        if (camera.number() == 1) {
            camera.readRequest();
            camera.write(sized("000 Success"));
        }
        camera.waitForEnd();
    });
    EXPECT_EQ(run(server, {request("a"), request("b")}, 2s),
              (Texts{"000 Success", CommandBatch::failureText()}));
}

TEST(CommandBatch, HalfAReplyFailsOnlyItsRequest)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        camera.write(camera.number() == 1 ? "HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n000 Su"
                                          : sized("000 Success"));
    });
    EXPECT_EQ(run(server, {request("a"), request("b")}),
              (Texts{CommandBatch::failureText(), "000 Success"}));
}

TEST(CommandBatch, GarbageAndFloodsFailTheirRequests)
{
    TinyServer server([](Connection &camera) {
        camera.readRequest();
        if (camera.number() == 1)
            camera.write("HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n\r\n");
        else if (camera.number() == 2)
            camera.write("HTTP/1.1 200 OK\r\n\r\n" + std::string(2'000'000, 'x'));
        else
            camera.write(std::string(2'000'000, '\x01'));
        camera.waitForEnd();
    });
    const std::string &failed = CommandBatch::failureText();
    EXPECT_EQ(run(server, {request("a"), request("b"), request("c")}),
              (Texts{failed, failed, failed}));
}

} // namespace
