#include "camsim/message_splitter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace camsim;

namespace {

struct Unit
{
    MessageSplitter::Kind kind;
    std::string bytes;

    bool operator==(const Unit &) const = default;
};

const std::string options = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";
const std::string answer = "RTSP/1.0 200 OK\r\nCSeq: 2\r\ncontent-length: 5\r\n\r\nhello";
const std::string packet("$\0\0\3abc", 7);

std::vector<Unit> split(const std::vector<std::string> &pieces)
{
    std::vector<Unit> units;
    MessageSplitter splitter([&units](MessageSplitter::Kind kind, std::string bytes) {
        units.push_back({kind, std::move(bytes)});
    });
    for (const std::string &piece : pieces)
        splitter.feed(piece);
    return units;
}

} // namespace

TEST(MessageSplitter, CutsMessagesAndPackets)
{
    using enum MessageSplitter::Kind;
    const std::vector<Unit> expected{{Message, options}, {Packet, packet}, {Message, answer}};
    EXPECT_EQ(split({options + packet + answer}), expected);
}

TEST(MessageSplitter, BytesMayComeOneByOne)
{
    std::vector<std::string> pieces;
    for (const char c : options + packet + answer + packet)
        pieces.emplace_back(1, c);
    EXPECT_EQ(split(pieces), split({options, packet, answer, packet}));
}

TEST(MessageSplitter, WaitsForTheRest)
{
    EXPECT_TRUE(split({answer.substr(0, answer.size() - 1)}).empty());
    EXPECT_TRUE(split({packet.substr(0, 3)}).empty());
}

TEST(MessageSplitter, FindsHeadersWhateverTheirCase)
{
    EXPECT_EQ(headerValue(answer, "CONTENT-LENGTH"), "5");
    EXPECT_EQ(headerValue(answer, "Cseq"), "2");
    EXPECT_TRUE(headerValue(answer, "hello").empty());
    EXPECT_TRUE(headerValue("no message at all", "CSeq").empty());
}
