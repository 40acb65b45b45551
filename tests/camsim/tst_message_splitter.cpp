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

const std::string kOptions = "OPTIONS * RTSP/1.0\r\nCSeq: 1\r\n\r\n";
const std::string kAnswer = "RTSP/1.0 200 OK\r\nCSeq: 2\r\ncontent-length: 5\r\n\r\nhello";
const std::string kPacket("$\0\0\3abc", 7);

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
    const std::vector<Unit> expected{{Message, kOptions}, {Packet, kPacket}, {Message, kAnswer}};
    EXPECT_EQ(split({kOptions + kPacket + kAnswer}), expected);
}

TEST(MessageSplitter, BytesMayComeOneByOne)
{
    std::vector<std::string> pieces;
    for (const char c : kOptions + kPacket + kAnswer + kPacket)
        pieces.emplace_back(1, c);
    EXPECT_EQ(split(pieces), split({kOptions, kPacket, kAnswer, kPacket}));
}

TEST(MessageSplitter, WaitsForTheRest)
{
    EXPECT_TRUE(split({kAnswer.substr(0, kAnswer.size() - 1)}).empty());
    EXPECT_TRUE(split({kPacket.substr(0, 3)}).empty());
}

TEST(MessageSplitter, FindsHeadersWhateverTheirCase)
{
    EXPECT_EQ(headerValue(kAnswer, "CONTENT-LENGTH"), "5");
    EXPECT_EQ(headerValue(kAnswer, "Cseq"), "2");
    EXPECT_TRUE(headerValue(kAnswer, "hello").empty());
    EXPECT_TRUE(headerValue("no message at all", "CSeq").empty());
}
