#include "fuzz/expect.h"
#include "platform/rtsp/depacketizer.h"
#include "platform/rtsp/session_description.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string>

namespace {

bool mentions(std::string text, const char *word)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    return text.find(word) != std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char *>(data), size);
    const auto description = rtsp::parseSessionDescription(text);
    if (!description)
        return 0;
    FUZZ_EXPECT(description->media.empty() || mentions(text, "m="));
    for (const rtsp::MediaDescription &medium : description->media) {
        FUZZ_EXPECT(medium.control.size() <= size && medium.connection.size() <= size);
        FUZZ_EXPECT(!rtsp::isPlayable(medium) || !medium.backChannel);
        const rtsp::PayloadFormat *format = rtsp::playableFormat(medium);
        FUZZ_EXPECT(!format || rtsp::canDepacketize(medium, *format));
        FUZZ_EXPECT(!format || (format->payloadType >= 0 && format->payloadType <= 127));
        FUZZ_EXPECT(!format || !format->encoding.empty());
    }
    return 0;
}
