#include "fuzz/expect.h"
#include "platform/base/text.h"
#include "platform/onvif/scopes.h"

#include <glib.h>

#include <cstdint>

namespace {

bool isClean(const std::string &text, std::size_t maxBytes)
{
    if (text.size() > maxBytes ||
        !g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        return false;
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const std::size_t maxBytes : {0, 1, 31, 127, 4096})
        FUZZ_EXPECT(isClean(base::cleanText(text, maxBytes), maxBytes));
    FUZZ_EXPECT(base::percentDecode(base::percentEncode(text)) == text);
    FUZZ_EXPECT(base::xmlEscape(text).find_first_of("<>\"'") == std::string::npos);
    const std::string uid = base::uidFromEndpoint(text);
    FUZZ_EXPECT(uid.size() <= base::maxUidLength);
    FUZZ_EXPECT(uid.find_first_of("/\\ %*?\"<>|") == std::string::npos);
    const onvif::ScopeTexts texts = onvif::textsFromScopes(
        {std::string(text), "onvif://www.onvif.org/location/" + std::string(text),
         "onvif://www.onvif.org/location/" + std::string(text)});
    FUZZ_EXPECT(isClean(texts.location, onvif::maxScopeText));
    static_cast<void>(onvif::parseMac(text));
    return 0;
}
