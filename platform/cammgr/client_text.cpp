#include "platform/cammgr/client_text.h"

#include "platform/cammgr/glib_ptr.h"

#include <algorithm>

namespace cammgr {

std::string utf8Text(const char *text)
{
    if (!text)
        return {};
    if (g_utf8_validate(text, -1, nullptr))
        return text;
    const TextPtr converted(g_convert(text, -1, "UTF-8", "ISO-8859-1", nullptr, nullptr, nullptr));
    return converted ? converted.get() : std::string();
}

bool isOneWord(const std::string &text)
{
    return std::none_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte <= 0x20 || byte == 0x7f;
    });
}

} // namespace cammgr
