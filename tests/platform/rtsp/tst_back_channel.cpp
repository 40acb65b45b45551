#include "platform/rtsp/back_channel.h"

#include "platform/rtsp/rtcp.h"
#include "platform/rtsp/rtp_packet.h"
#include "platform/rtsp/rtp_sender.h"
#include "platform/rtsp/sendable_sound.h"
#include "tests/platform/rtsp/scripted_camera.h"
#include "tests/platform/rtsp/viewer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <future>

using rtsp::StreamEnd;
using testing::ElementsAre;
using testing::HasSubstr;
using Connection = ScriptedCamera::Connection;
using Request = ScriptedCamera::Request;

namespace {

using namespace std::chrono_literals;

constexpr const char *feature = "www.onvif.org/ver20/backchannel";

std::string withBackChannel(const std::string &medium)
{
    return ScriptedCamera::goodDescription() + medium + "a=control:track3\r\na=sendonly\r\n";
}

const std::string muLaw = "m=audio 0 RTP/AVP 0\r\n";

/// A back channel on the thread of the viewers, and what it told.
class Talker : public rtsp::BackChannel::Client
{
public:
    explicit Talker(rtsp::StreamRequest request)
    {
        Viewer::run(
            [&] { m_channel = std::make_unique<rtsp::BackChannel>(*this, std::move(request)); });
    }
    explicit Talker(const std::string &url, const std::string &user = {},
                    const std::string &password = {})
        : Talker(rtsp::StreamRequest{.url = url, .username = user, .password = password})
    {
    }
    ~Talker() override
    {
        Viewer::run([&] { m_channel.reset(); });
    }
    Talker(const Talker &) = delete;
    Talker &operator=(const Talker &) = delete;

    void start()
    {
        Viewer::run([&] { m_channel->start(); });
    }
    void say(const std::string &sound, uint64_t ticks)
    {
        Viewer::run([&] {
            m_channel->send({reinterpret_cast<const uint8_t *>(sound.data()), sound.size()}, ticks);
        });
    }
    void close(const std::function<void()> &closed = nullptr)
    {
        Viewer::run([&] { m_channel->close(closed); });
    }
    /// The encoding that the camera wants; empty when it ended instead.
    std::string waitUntilOpen()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, 30s, [&] { return !m_encoding.empty() || m_end; });
        return m_encoding;
    }
    std::optional<StreamEnd> waitForEnd()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, 30s, [&] { return m_end.has_value(); });
        return m_end;
    }

private:
    void opened(const rtsp::PayloadFormat &format) override
    {
        const std::lock_guard lock(m_mutex);
        m_encoding = format.encoding;
        m_changed.notify_all();
    }
    void ended(StreamEnd reason, const std::string &) override
    {
        const std::lock_guard lock(m_mutex);
        m_end = reason;
        m_changed.notify_all();
    }

    std::unique_ptr<rtsp::BackChannel> m_channel;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_encoding;
    std::optional<StreamEnd> m_end;
};

std::span<const uint8_t> bytesOf(const std::string &text)
{
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

TEST(BackChannel, SendsSoundInASessionOfItsOwn)
{
    ScriptedCamera camera({.description = withBackChannel(muLaw)});
    Talker talker(camera.url());
    talker.start();
    ASSERT_EQ(talker.waitUntilOpen(), "PCMU");
    for (uint64_t i = 0; i < 5; ++i)
        talker.say(std::string(160, static_cast<char>('a' + i)), 160 * i);
    // A report goes with the first packet.
    ASSERT_TRUE(camera.waitFor([&] { return camera.reports().size() >= 6; }));
    talker.close();
    ASSERT_TRUE(camera.waitFor([&] { return camera.openConnections() == 0; }));

    EXPECT_THAT(camera.methods(), ElementsAre("OPTIONS", "DESCRIBE", "SETUP", "PLAY", "TEARDOWN"));
    for (const char *method : {"DESCRIBE", "SETUP", "PLAY"})
        EXPECT_EQ(camera.requests(method).front().header("require"), feature) << method;
    EXPECT_EQ(camera.requests("OPTIONS").front().header("require"), "");
    EXPECT_THAT(camera.requests("SETUP").front().url, HasSubstr("track3"));

    const std::vector<std::pair<int, std::string>> sent = camera.reports();
    int packets = 0;
    std::optional<rtsp::RtpPacket> first;
    for (const auto &[channel, text] : sent) {
        if (channel == 1) {
            const rtsp::RtcpNews news = rtsp::parseRtcp(bytesOf(text));
            ASSERT_TRUE(news.report && first);
            EXPECT_EQ(news.report->source, first->source);
            continue;
        }
        const auto packet = rtsp::parseRtpPacket(bytesOf(text));
        ASSERT_TRUE(packet);
        if (!first)
            first = packet;
        EXPECT_EQ(packet->payloadType, 0);
        EXPECT_EQ(packet->source, first->source);
        EXPECT_EQ(packet->number, static_cast<uint16_t>(first->number + packets));
        EXPECT_EQ(packet->time, first->time + 160U * static_cast<uint32_t>(packets));
        EXPECT_EQ(packet->marker, packets == 0) << "where sound begins";
        EXPECT_EQ(std::string(packet->payload.begin(), packet->payload.end()),
                  std::string(160, static_cast<char>('a' + packets)));
        ++packets;
    }
    EXPECT_EQ(packets, 5);
}

TEST(BackChannel, GoesOverUdpWhereTheCameraRefusesInterleaved)
{
    std::array<int, 2> sockets{};
    std::array<uint16_t, 2> ports{};
    for (size_t i = 0; i < 2; ++i) {
        sockets[i] = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_in address{};
        socklen_t size = sizeof address;
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        ASSERT_EQ(::bind(sockets[i], reinterpret_cast<sockaddr *>(&address), size), 0);
        ASSERT_EQ(::getsockname(sockets[i], reinterpret_cast<sockaddr *>(&address), &size), 0);
        ports[i] = ntohs(address.sin_port);
        const timeval limit = {.tv_sec = 30, .tv_usec = 0};
        ::setsockopt(sockets[i], SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }
    const std::string server =
        ";server_port=" + std::to_string(ports[0]) + '-' + std::to_string(ports[1]);
    ScriptedCamera camera({.script =
                               [&](const Request &request, Connection &connection) {
                                   if (request.method != "SETUP")
                                       return false;
                                   const std::string wanted = request.header("transport");
                                   if (wanted.find("TCP") != std::string::npos)
                                       connection.answer(request, "461 Unsupported Transport");
                                   else
                                       connection.answer(request, "200 OK",
                                                         "Session: 1\r\nTransport: " + wanted +
                                                             server + "\r\n");
                                   return true;
                               },
                           .description = withBackChannel(muLaw)});
    Talker talker(camera.url());
    talker.start();
    ASSERT_EQ(talker.waitUntilOpen(), "PCMU");
    talker.say("sound", 0);
    std::array<char, 2048> buffer{};
    for (size_t i = 0; i < 2; ++i) {
        const ssize_t size = ::recv(sockets[i], buffer.data(), buffer.size(), 0);
        ASSERT_GT(size, 0);
        const std::string text(buffer.data(), static_cast<size_t>(size));
        if (i == 0)
            EXPECT_EQ(text.substr(12), "sound") << "the first packet is sound";
        else
            EXPECT_TRUE(rtsp::parseRtcp(bytesOf(text)).report);
        ::close(sockets[i]);
    }
    EXPECT_EQ(camera.requests("SETUP").size(), 2U);
}

TEST(BackChannel, EndsWhereTheCameraTakesNoSound)
{
    ScriptedCamera plain;
    ScriptedCamera strange({.description = withBackChannel("m=audio 0 RTP/AVP 97\r\n"
                                                           "a=rtpmap:97 SECRET/8000\r\n")});
    ScriptedCamera unwilling({.script = [](const Request &request, Connection &connection) {
        if (request.header("require").empty())
            return false;
        connection.answer(request, "551 Option Not Supported",
                          std::string("Unsupported: ") + feature + "\r\n");
        return true;
    }});
    for (const auto &[camera, reason] :
         {std::pair(&plain, StreamEnd::NoVideo), std::pair(&strange, StreamEnd::NoVideo),
          std::pair(&unwilling, StreamEnd::PathRefused)}) {
        Talker talker(camera->url());
        talker.start();
        EXPECT_EQ(talker.waitForEnd(), reason);
        EXPECT_TRUE(camera->requests("SETUP").empty());
        ASSERT_TRUE(camera->waitFor([camera = camera] { return camera->openConnections() == 0; }));
    }
}

TEST(BackChannel, EndsWithTheConnection)
{
    ScriptedCamera camera({.script =
                               [](const Request &request, Connection &connection) {
                                   if (request.method != "GET_PARAMETER")
                                       return false;
                                   connection.close();
                                   return true;
                               },
                           .session = "1;timeout=2",
                           .description = withBackChannel(muLaw)});
    Talker talker(camera.url());
    talker.start();
    ASSERT_EQ(talker.waitUntilOpen(), "PCMU");
    // Its keep-alive is what this camera dislikes.
    EXPECT_EQ(talker.waitForEnd(), StreamEnd::Closed);
    EXPECT_EQ(camera.requests("GET_PARAMETER").front().header("session"), "1");
    EXPECT_EQ(camera.connectionCount(), 1) << "nothing is tried again";
}

TEST(BackChannel, LogsInOnce)
{
    const auto guarded = [](const std::string &right) {
        return [right](const Request &request, Connection &connection) {
            if (request.method == "OPTIONS" ||
                request.header("authorization").find("username=\"" + right) != std::string::npos)
                return false;
            connection.answer(request, "401 Unauthorized",
                              "WWW-Authenticate: Digest realm=\"r\", nonce=\"n\"\r\n");
            return true;
        };
    };
    ScriptedCamera camera({.script = guarded("ann"), .description = withBackChannel(muLaw)});
    Talker talker(camera.url(), "ann", "secret");
    talker.start();
    EXPECT_EQ(talker.waitUntilOpen(), "PCMU");
    Talker stranger(camera.url(), "bob", "secret");
    stranger.start();
    EXPECT_EQ(stranger.waitForEnd(), StreamEnd::Refused);
    int wrong = 0;
    for (const Request &request : camera.requests())
        wrong += request.header("authorization").find("bob") != std::string::npos ? 1 : 0;
    EXPECT_EQ(wrong, 1);
}

TEST(BackChannel, TellsWhenTheCameraHasLetGo)
{
    ScriptedCamera camera({.description = withBackChannel(muLaw)});
    Talker talker(camera.url());
    std::promise<size_t> closed;
    talker.close([&] { closed.set_value(0); });
    EXPECT_EQ(closed.get_future().wait_for(30s), std::future_status::ready) << "never started";
    talker.start();
    ASSERT_EQ(talker.waitUntilOpen(), "PCMU");
    std::promise<size_t> torn;
    talker.close([&] { torn.set_value(camera.requests("TEARDOWN").size()); });
    EXPECT_EQ(torn.get_future().get(), 1U);
    talker.say("too late", 0);
}

std::string chosen(const std::string &media)
{
    const auto description = rtsp::parseSessionDescription(
        "v=0\r\no=- 1 1 IN IP4 0.0.0.0\r\ns=x\r\nt=0 0\r\nm=video 0 RTP/AVP 96\r\n"
        "a=rtpmap:96 H264/90000\r\n" +
        media);
    const auto sound = rtsp::chooseSendable(description.value());
    return sound ? sound->format->encoding : "none";
}

TEST(SendableSound, TakesTheSimplestFormatThatTheCameraOffers)
{
    const std::string back = "a=sendonly\r\n";
    const std::string aac = "a=rtpmap:97 MPEG4-GENERIC/16000\r\na=fmtp:97 mode=AAC-hbr;"
                            "sizelength=13;indexlength=3;config=1408\r\n";
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 0\r\n" + back), "PCMU");
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 8 0\r\n" + back), "PCMA");
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 97 98 8\r\n" + aac + "a=rtpmap:98 G726-32/8000\r\n" + back),
              "PCMA");
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 97 98\r\n" + aac + "a=rtpmap:98 G726-32/8000\r\n" + back),
              "G726-32");
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 97\r\n" + aac + back), "MPEG4-GENERIC");
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 98\r\na=rtpmap:98 PCMU/16000\r\n" + back), "PCMU");
    // The second medium is the simpler one.
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 97\r\n" + aac + back + "m=audio 0 RTP/AVP 0\r\n" + back),
              "PCMU");
}

TEST(SendableSound, LeavesOutWhatCannotBeSent)
{
    const std::string back = "a=sendonly\r\n";
    EXPECT_EQ(chosen("m=audio 0 RTP/AVP 0\r\n"), "none") << "the camera's own sound";
    for (const char *format : {"L16/44100", "PCMU/96000", "PCMU/8000/6", "G726-32/16000",
                               "G726-48/8000", "OPUS/48000/2", "MPEG4-GENERIC/16000"})
        EXPECT_EQ(
            chosen("m=audio 0 RTP/AVP 97\r\na=rtpmap:97 " + std::string(format) + "\r\n" + back),
            "none")
            << format;
    // Another profile, another rate, and a configuration that is none.
    for (const char *config : {"2b0888", "1208", "zz"})
        EXPECT_EQ(chosen("m=audio 0 RTP/AVP 97\r\na=rtpmap:97 MPEG4-GENERIC/16000\r\n"
                         "a=fmtp:97 mode=AAC-hbr;config=" +
                         std::string(config) + "\r\n" + back),
                  "none")
            << config;
}

TEST(SendableSound, AacHasAHeader)
{
    rtsp::PayloadFormat format;
    format.encoding = "MPEG4-GENERIC";
    const std::string frame(200, 'x');
    const base::Bytes payload = rtsp::payloadOf(format, bytesOf(frame));
    ASSERT_EQ(payload.size(), 204U);
    // 16 bits of headers; 13 bits of size, 3 of index.
    EXPECT_THAT(base::Bytes(payload.begin(), payload.begin() + 4),
                ElementsAre(0, 16, 200 >> 5, (200 << 3) & 0xff));
    EXPECT_TRUE(rtsp::payloadOf(format, bytesOf(std::string(8192, 'x'))).empty());
    format.encoding = "PCMU";
    EXPECT_EQ(rtsp::payloadOf(format, bytesOf(frame)).size(), 200U);
}

TEST(RtpSender, ReportsSayWhatTimeItIs)
{
    rtsp::RtpSender sender(8, 8000);
    EXPECT_FALSE(sender.hasSent());
    const base::SteadyClock::time_point begin;
    const base::Bytes bytes = sender.packet(bytesOf("abcd"), 1000, begin);
    const auto packet = rtsp::parseRtpPacket(bytes);
    ASSERT_TRUE(packet);
    EXPECT_EQ(packet->payloadType, 8);
    EXPECT_TRUE(sender.hasSent());
    // Half a second later, which is a quarter past 1970 began.
    const auto news = rtsp::parseRtcp(sender.report(begin + 500ms, 250'000'000));
    ASSERT_TRUE(news.report);
    EXPECT_EQ(news.report->source, packet->source);
    EXPECT_EQ(news.report->rtpTime, packet->time + 4000);
    EXPECT_EQ(news.report->ntpTime, uint64_t{2'208'988'800} << 32 | uint64_t{1} << 30);
    const base::Bytes report = sender.report(begin, 0);
    EXPECT_EQ(report[23], 1) << "packets";
    EXPECT_EQ(report[27], 4) << "bytes of payload";
}

} // namespace
