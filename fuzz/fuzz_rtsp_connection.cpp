#include "fuzz/expect.h"
#include "platform/rtsp/control_url.h"
#include "platform/rtsp/stream_splitter.h"
#include "platform/rtsp/transport_header.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr rtsp::StreamSplitter::Limits limits{
    .headBytes = 512, .bodyBytes = 2048, .garbageBytes = 4096, .strangerBytes = 256};

/// Notes what comes out, and reads on in what a camera may have put into its headers.
class Listener : public rtsp::StreamSplitter::Sink
{
public:
    void packet(uint8_t channel, std::span<const uint8_t> data) override
    {
        log.push_back(std::to_string(channel) + ' ' + std::string(data.begin(), data.end()));
    }
    void reply(rtsp::Reply reply) override
    {
        FUZZ_EXPECT(reply.status >= 100 && reply.status <= 999);
        FUZZ_EXPECT(reply.body.size() <= limits.bodyBytes);
        const auto session = rtsp::parseSession(reply.first("Session"));
        FUZZ_EXPECT(session.timeoutSeconds >= 2 && session.timeoutSeconds <= 86400);
        const auto transport = rtsp::parseTransport(reply.first("Transport"));
        FUZZ_EXPECT(!transport.isTcp || !transport.isUdp);
        const rtsp::ControlBase base{"rtsp://camera/live", reply.first("Content-Base"),
                                     reply.body.substr(0, 100)};
        FUZZ_EXPECT(!rtsp::controlUrls(base, reply.first("Location")).empty());
        FUZZ_EXPECT(!rtsp::aggregateUrls(base).empty());
        log.push_back("reply " + std::to_string(reply.status) + ' ' + reply.body);
    }
    void request(const rtsp::ServerRequest &request) override
    {
        FUZZ_EXPECT(!request.method.empty());
        log.push_back("request " + request.method);
    }

    std::vector<std::string> log;
};

/// What comes out when the bytes come in pieces of that size.
std::vector<std::string> read(std::span<const uint8_t> data, std::size_t piece)
{
    Listener listener;
    rtsp::StreamSplitter splitter(listener, limits);
    bool isRtsp = true;
    while (isRtsp && !data.empty()) {
        const std::size_t size = std::min(piece, data.size());
        isRtsp = splitter.feed(data.first(size));
        data = data.subspan(size);
    }
    return listener.log;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::span<const uint8_t> bytes(data, size);
    const std::vector<std::string> whole = read(bytes, std::max<std::size_t>(size, 1));
    for (const std::size_t piece : {1, 7, 1000})
        FUZZ_EXPECT(read(bytes, piece) == whole);
    return 0;
}
