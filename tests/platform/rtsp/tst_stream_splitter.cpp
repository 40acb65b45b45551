#include "platform/rtsp/stream_splitter.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using rtsp::Reply;
using rtsp::ServerRequest;
using rtsp::StreamSplitter;

namespace {

std::span<const uint8_t> bytes(const std::string &text)
{
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

std::string packet(int channel, const std::string &payload)
{
    std::string text = {'$', static_cast<char>(channel), static_cast<char>(payload.size() >> 8U),
                        static_cast<char>(payload.size() & 0xffU)};
    return text + payload;
}

std::string rtp(char filling, size_t size = 40)
{
    return "\x80\x60" + std::string(size, filling);
}

class SplitterTest : public testing::Test, public StreamSplitter::Sink
{
protected:
    void packet(uint8_t channel, std::span<const uint8_t> data) override
    {
        m_log.push_back("packet " + std::to_string(channel) + " " + std::to_string(data.size()) +
                        (data.empty() ? "" : std::string(" ") + static_cast<char>(data.back())));
        if (m_stopsAfter > 0 && --m_stopsAfter == 0)
            m_splitter.stop();
    }
    void reply(Reply reply) override
    {
        m_log.push_back("reply " + std::to_string(reply.status) + " " + reply.body);
    }
    void request(const ServerRequest &request) override
    {
        m_log.push_back("request " + request.method + " " + request.first("CSeq"));
    }
    using Log = std::vector<std::string>;

    Log m_log;
    int m_stopsAfter = 0;
    StreamSplitter m_splitter{*this};
};

TEST_F(SplitterTest, TakesPacketsAndMessagesInAnyOrder)
{
    EXPECT_TRUE(m_splitter.feed(
        bytes(::packet(0, rtp('a')) + "RTSP/1.0 200 OK\r\nCSeq: 1\r\nContent-Length: 3\r\n\r\nv=0" +
              ::packet(1, rtp('b')) + ::packet(2, {}) +
              "SET_PARAMETER rtsp://x RTSP/1.0\r\nCSeq: 9\r\nContent-Length: 2\r\n\r\nxx" +
              ::packet(0, rtp('c', 60000)))));
    EXPECT_EQ(m_log, (Log{"packet 0 42 a", "reply 200 v=0", "packet 1 42 b", "packet 2 0",
                          "request SET_PARAMETER 9", "packet 0 60002 c"}));
    EXPECT_FALSE(m_splitter.hasBegun());
}

TEST_F(SplitterTest, TakesTheSameInPiecesOfAnySize)
{
    const std::string text =
        ::packet(0, rtp('a')) + "RTSP/1.0 401 No\r\n\r\n" + ::packet(3, rtp('b', 300)) +
        "RTSP/1.0 200 OK\nContent-Length: 4\n\nbody\r\n" + ::packet(0, rtp('c'));
    m_splitter.feed(bytes(text));
    const Log whole = m_log;
    ASSERT_EQ(whole.size(), 5u);
    for (size_t size = 1; size < text.size(); ++size) {
        m_log.clear();
        StreamSplitter splitter(*this);
        for (size_t position = 0; position < text.size(); position += size)
            EXPECT_TRUE(splitter.feed(bytes(text.substr(position, size))));
        EXPECT_EQ(m_log, whole) << "in pieces of " << size;
    }
}

TEST_F(SplitterTest, FindsTheNextPacketBehindGarbage)
{
    m_splitter.feed(bytes(::packet(0, rtp('a'))));
    std::minstd_rand random(1);
    std::string garbage(5000, 0);
    for (char &c : garbage)
        c = static_cast<char>(random() % 0x20);
    garbage[0] = '\x7f';
    EXPECT_TRUE(m_splitter.feed(bytes(garbage + ::packet(0, rtp('b')) + ::packet(0, rtp('c')))));
    EXPECT_EQ(m_log, (Log{"packet 0 42 a", "packet 0 42 b", "packet 0 42 c"}));
}

TEST_F(SplitterTest, FindsTheNextAnswerBehindGarbage)
{
    m_splitter.feed(bytes(::packet(0, rtp('a'))));
    for (const std::string piece : {"\x01$", "\x02\x01 R", "TSX RT", "SP/1.0 200 OK\r\n\r\n"})
        EXPECT_TRUE(m_splitter.feed(bytes(piece)));
    EXPECT_EQ(m_log, (Log{"packet 0 42 a", "reply 200 "}));
}

TEST_F(SplitterTest, GarbageHasABound)
{
    m_splitter.feed(bytes(::packet(0, rtp('a'))));
    bool isRtsp = true;
    size_t fed = 0;
    for (; isRtsp && fed < (size_t{1} << 22U); fed += 1000)
        isRtsp = m_splitter.feed(bytes(std::string(1000, '\x01')));
    EXPECT_FALSE(isRtsp);
    EXPECT_LE(fed, (size_t{1} << 18U) + 2000);
    EXPECT_FALSE(m_splitter.feed(bytes("RTSP/1.0 200 OK\r\n\r\n")));
    EXPECT_EQ(m_log.size(), 1u);
}

TEST_F(SplitterTest, AServerOfAnotherKindIsKnownSoon)
{
    EXPECT_FALSE(
        m_splitter.feed(bytes("HTTP/1.1 400 Bad Request\r\n\r\n" + std::string(5000, 'x'))));
    EXPECT_TRUE(m_log.empty());
}

TEST_F(SplitterTest, AMessageOverTheLimitIsNone)
{
    EXPECT_FALSE(m_splitter.feed(bytes("RTSP/1.0 200 OK\r\nContent-Length: 1048576\r\n\r\nv=0")));
    StreamSplitter other(*this);
    bool isRtsp = true;
    for (int i = 0; i < 100 && isRtsp; ++i)
        isRtsp = other.feed(bytes("RTSP/1.0 200 OK\r\nX: " + std::string(1000, 'x')));
    EXPECT_FALSE(isRtsp);
    EXPECT_TRUE(m_log.empty());
}

TEST_F(SplitterTest, StopsInTheMiddle)
{
    m_stopsAfter = 2;
    EXPECT_TRUE(m_splitter.feed(
        bytes(::packet(0, rtp('a')) + ::packet(0, rtp('b')) + ::packet(0, rtp('c')))));
    EXPECT_TRUE(m_splitter.feed(bytes(::packet(0, rtp('d')))));
    EXPECT_EQ(m_log, (Log{"packet 0 42 a", "packet 0 42 b"}));
}

TEST_F(SplitterTest, KnowsWhetherSomethingHasBegun)
{
    m_splitter.feed(bytes("RTSP/1.0 20"));
    EXPECT_TRUE(m_splitter.hasBegun());
    m_splitter.feed(bytes("0 OK\r\n\r\n"));
    EXPECT_FALSE(m_splitter.hasBegun());
    m_splitter.feed(bytes("$"));
    EXPECT_TRUE(m_splitter.hasBegun());
}

} // namespace
