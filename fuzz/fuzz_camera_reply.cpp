#include "fuzz/expect.h"
#include "platform/rtsp/login_policy.h"
#include "platform/rtsp/reply_reader.h"
#include "platform/rtsp/rtsp_login.h"

#include <cstdint>

namespace {

constexpr rtsp::ReplyReader::Limits limits{.headerBytes = 512, .bodyBytes = 2048};

void check(const rtsp::Reply &reply)
{
    FUZZ_EXPECT(reply.status >= 100 && reply.status <= 999);
    FUZZ_EXPECT(reply.body.size() <= limits.bodyBytes);
    rtsp::RtspLogin login("admin", "secret");
    rtsp::LoginPolicy policy;
    if (login.takeChallenge(reply.all("WWW-Authenticate"), policy, false)) {
        const std::string answer = login.authorization("DESCRIBE", "rtsp://camera/live");
        FUZZ_EXPECT(!answer.empty() && answer.find_first_of("\r\n") == std::string::npos);
    }
}

/// What comes out in the end, when the bytes come in pieces of that size.
int read(rtsp::ReplyReader::Protocol protocol, std::string_view data, size_t piece)
{
    rtsp::ReplyReader reader(protocol, limits);
    int replies = 0;
    auto state = rtsp::ReplyReader::State::Incomplete;
    while (!data.empty() && state != rtsp::ReplyReader::State::Broken) {
        state = reader.feed(data.substr(0, piece));
        data.remove_prefix(std::min(piece, data.size()));
        for (; state == rtsp::ReplyReader::State::Complete; state = reader.feed({})) {
            check(reader.take());
            ++replies;
        }
    }
    if (protocol == rtsp::ReplyReader::Protocol::Http && reader.isBareText())
        FUZZ_EXPECT(!reader.takeBareText().empty());
    if (reader.end() == rtsp::ReplyReader::State::Complete) {
        check(reader.take());
        ++replies;
    }
    return replies;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const auto protocol :
         {rtsp::ReplyReader::Protocol::Rtsp, rtsp::ReplyReader::Protocol::Http}) {
        const int whole = read(protocol, text, text.size());
        FUZZ_EXPECT(read(protocol, text, 1) >= whole);
    }
    return 0;
}
