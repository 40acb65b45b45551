#include "platform/rtsp/reply_reader.h"

#include <gtest/gtest.h>

using Protocol = rtsp::ReplyReader::Protocol;
using State = rtsp::ReplyReader::State;

namespace {

rtsp::Reply readWhole(Protocol protocol, const std::string &text)
{
    rtsp::ReplyReader reader(protocol);
    EXPECT_EQ(reader.feed(text), State::Complete) << text;
    return reader.take();
}

TEST(ReplyReader, ReadsAnRtspReply)
{
    const rtsp::Reply reply =
        readWhole(Protocol::Rtsp, "RTSP/1.0 401 Unauthorized\r\n"
                                  "CSeq: 1\r\n"
                                  "WWW-Authenticate: Digest realm=\"a\"\r\n"
                                  "www-authenticate: Basic realm=\"b\"\r\n\r\n");
    EXPECT_EQ(reply.status, 401);
    EXPECT_EQ(reply.first("cseq"), "1");
    EXPECT_EQ(reply.first("Missing"), "");
    EXPECT_EQ(reply.all("WWW-Authenticate"),
              (std::vector<std::string>{"Digest realm=\"a\"", "Basic realm=\"b\""}));
    EXPECT_TRUE(reply.keepsConnection);
    EXPECT_EQ(reply.body, "");
}

TEST(ReplyReader, ReadsByteByByte)
{
    const std::string text = "HTTP/1.1 200 OK\nContent-Length: 5\n\nab\ncd";
    rtsp::ReplyReader reader(Protocol::Http);
    for (size_t i = 0; i + 1 < text.size(); ++i)
        ASSERT_EQ(reader.feed(text.substr(i, 1)), State::Incomplete) << i;
    EXPECT_EQ(reader.feed("d"), State::Complete);
    EXPECT_EQ(reader.take().body, "ab\ncd");
    EXPECT_FALSE(reader.hasBegun());
}

TEST(ReplyReader, KeepsWhatBelongsToTheNextReply)
{
    rtsp::ReplyReader reader(Protocol::Http);
    ASSERT_EQ(reader.feed("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nAHTTP/1.1 404 No\r\n"
                          "Content-Length: 0\r\n\r\n"),
              State::Complete);
    EXPECT_EQ(reader.take().body, "A");
    ASSERT_EQ(reader.feed({}), State::Complete);
    EXPECT_EQ(reader.take().status, 404);
}

TEST(ReplyReader, JoinsChunks)
{
    const rtsp::Reply reply = readWhole(Protocol::Http, "HTTP/1.1 200 OK\r\n"
                                                        "Transfer-Encoding: chunked\r\n\r\n"
                                                        "4;x=y\r\n000 \r\n8\r\nSuccess\n\r\n0\r\n"
                                                        "Trailer: t\r\n\r\n");
    EXPECT_EQ(reply.body, "000 Success\n");
    EXPECT_TRUE(reply.keepsConnection);
}

TEST(ReplyReader, AChunkEndsWhereItSays)
{
    for (const size_t piece : {1u, 1000u}) {
        std::string_view text = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                                "4\r\n000 more\r\n0\r\n\r\n";
        rtsp::ReplyReader reader(Protocol::Http);
        State state = State::Incomplete;
        while (!text.empty() && state == State::Incomplete) {
            state = reader.feed(text.substr(0, piece));
            text.remove_prefix(std::min(piece, text.size()));
        }
        EXPECT_EQ(state, State::Broken) << piece;
    }
}

TEST(ReplyReader, TheEndOfTheConnectionEndsABodyWithoutLength)
{
    rtsp::ReplyReader reader(Protocol::Http);
    EXPECT_EQ(reader.feed("HTTP/1.1 200 OK\r\n\r\n000 Success"), State::Incomplete);
    EXPECT_EQ(reader.end(), State::Complete);
    const rtsp::Reply reply = reader.take();
    EXPECT_EQ(reply.body, "000 Success");
    EXPECT_FALSE(reply.keepsConnection);
}

TEST(ReplyReader, AnEndInTheMiddleIsNoReply)
{
    for (const char *text : {"", "HTTP/1.1 20", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n000",
                             "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nab"}) {
        rtsp::ReplyReader reader(Protocol::Http);
        EXPECT_EQ(reader.feed(text), State::Incomplete);
        EXPECT_EQ(reader.end(), State::Broken) << text;
    }
}

TEST(ReplyReader, SkipsContinue)
{
    EXPECT_EQ(readWhole(Protocol::Http, "HTTP/1.1 100 Continue\r\n\r\n"
                                        "HTTP/1.1 204 No Content\r\n\r\n")
                  .status,
              204);
}

TEST(ReplyReader, OldServersCloseUnlessTheySayOtherwise)
{
    EXPECT_FALSE(
        readWhole(Protocol::Http, "HTTP/1.0 200 OK\r\nContent-Length: 0\r\n\r\n").keepsConnection);
    EXPECT_TRUE(readWhole(Protocol::Http, "HTTP/1.0 200 OK\r\nConnection: Keep-Alive\r\n"
                                          "Content-Length: 0\r\n\r\n")
                    .keepsConnection);
    EXPECT_FALSE(readWhole(Protocol::Http, "HTTP/1.1 200 OK\r\nConnection: close\r\n"
                                           "Content-Length: 0\r\n\r\n")
                     .keepsConnection);
}

TEST(ReplyReader, RefusesGarbage)
{
    for (const char *text :
         {"GARBAGE\r\n\r\n", "HTTP/1.1 200 OK\r\n\r\n", "RTSP/1.0\r\n\r\n",
          "RTSP/1.0 2x0 OK\r\n\r\n", "RTSP/1.0 99 OK\r\n\r\n",
          "RTSP/1.0 200 OK\r\nContent-Length: x\r\n\r\n",
          "RTSP/1.0 200 OK\r\nContent-Length: -1\r\n\r\n",
          "RTSP/1.0 200 OK\r\nContent-Length: 99999999999999999999\r\n\r\n", "\r\n\r\n"}) {
        rtsp::ReplyReader reader(Protocol::Rtsp);
        EXPECT_EQ(reader.feed(text), State::Broken) << text;
        EXPECT_EQ(reader.feed("RTSP/1.0 200 OK\r\n\r\n"), State::Broken) << "broken for good";
    }
}

TEST(ReplyReader, RefusesHeadersWithoutEnd)
{
    rtsp::ReplyReader reader(Protocol::Rtsp);
    State state = reader.feed("RTSP/1.0 200 OK\r\n");
    for (int i = 0; i < 2000 && state == State::Incomplete; ++i)
        state = reader.feed("Name: value\r\n");
    EXPECT_EQ(state, State::Broken);
}

TEST(ReplyReader, RefusesABodyOfAMegabyteWithoutReadingIt)
{
    rtsp::ReplyReader reader(Protocol::Rtsp);
    EXPECT_EQ(reader.feed("RTSP/1.0 200 OK\r\nContent-Length: 1048576\r\n\r\n"), State::Broken);

    rtsp::ReplyReader open(Protocol::Http);
    State state = open.feed("HTTP/1.1 200 OK\r\n\r\n");
    for (int i = 0; i < 1024 && state == State::Incomplete; ++i)
        state = open.feed(std::string(1024, 'x'));
    EXPECT_EQ(state, State::Broken);
}

TEST(ReplyReader, KnowsATextWithoutHead)
{
    rtsp::ReplyReader reader(Protocol::Http);
    EXPECT_EQ(reader.feed("000 Success\nA=1"), State::Broken);
    EXPECT_TRUE(reader.isBareText());
    EXPECT_EQ(reader.takeBareText(), "000 Success\nA=1");

    rtsp::ReplyReader head(Protocol::Http);
    EXPECT_EQ(head.feed("HTT"), State::Incomplete);
    EXPECT_FALSE(head.isBareText());
}

} // namespace
