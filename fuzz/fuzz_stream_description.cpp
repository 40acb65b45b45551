#include "fuzz/expect.h"
#include "platform/cammgr/stream_description.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <memory>
#include <string>

namespace {

struct FreeMessage
{
    void operator()(GstSDPMessage *message) const { gst_sdp_message_free(message); }
};

std::unique_ptr<GstSDPMessage, FreeMessage> newMessage()
{
    GstSDPMessage *message = nullptr;
    gst_sdp_message_new(&message);
    return std::unique_ptr<GstSDPMessage, FreeMessage>(message);
}

bool mentions(std::string text, const char *word)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return text.find(word) != std::string::npos;
}

} // namespace

// GLib keeps, on purpose, each table of interned names that it has outgrown, and the names of a
// description's attributes are interned.
extern "C" const char *__lsan_default_suppressions() // NOLINT(bugprone-reserved-identifier)
{
    return "leak:libglib-2.0.so\n";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool isReady = gst_init_check(nullptr, nullptr, nullptr) != FALSE;
    FUZZ_EXPECT(isReady);
    if (size == 0)
        return 0;
    const auto message = newMessage();
    if (gst_sdp_message_parse_buffer(data, static_cast<guint>(size), message.get()) != GST_SDP_OK)
        return 0;
    const cammgr::OfferedMedia offered = cammgr::readOfferedMedia(message.get());
    const std::string text(reinterpret_cast<const char *>(data), size);
    FUZZ_EXPECT(!offered.hasVideo || mentions(text, "h264"));
    FUZZ_EXPECT((!offered.hasVideo && !offered.hasAudio) || mentions(text, "m="));
    return 0;
}
