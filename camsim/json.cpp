#include "camsim/json.h"

#include <array>
#include <cstdio>

namespace camsim {

namespace {

std::string quoted(std::string_view text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
            result += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            std::array<char, 8> code{};
            std::snprintf(code.data(), code.size(), "\\u%04x", static_cast<unsigned>(c));
            result += code.data();
        } else {
            result += c;
        }
    }
    return result + '"';
}

} // namespace

JsonLine &JsonLine::add(std::string_view key, std::string_view text)
{
    return raw(key, quoted(text));
}

JsonLine &JsonLine::raw(std::string_view key, std::string_view value)
{
    if (m_text.size() > 1)
        m_text += ", ";
    m_text += quoted(key);
    m_text += ": ";
    m_text += value;
    return *this;
}

} // namespace camsim
