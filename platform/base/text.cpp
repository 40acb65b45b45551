#include "platform/base/text.h"

#include <glib.h>

#include <algorithm>

namespace base {

namespace {

constexpr std::string_view whiteSpace = " \t\r\n\v\f";

bool isUidCharacter(char c)
{
    return g_ascii_isalnum(c) || c == '-' || c == '_' || c == '.' || c == ':';
}

bool isUnreserved(char c)
{
    return g_ascii_isalnum(c) || c == '-' || c == '_' || c == '.' || c == '~';
}

// Control characters, and format characters such as the direction overrides with which one text
// can be made to look like another.
bool isShowable(gunichar character)
{
    switch (g_unichar_type(character)) {
    case G_UNICODE_CONTROL:
    case G_UNICODE_FORMAT:
    case G_UNICODE_UNASSIGNED:
    case G_UNICODE_SURROGATE:
    case G_UNICODE_LINE_SEPARATOR:
    case G_UNICODE_PARAGRAPH_SEPARATOR:
        return false;
    default:
        return true;
    }
}

} // namespace

bool startsWithNoCase(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() &&
           g_ascii_strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool equalNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && startsWithNoCase(a, b);
}

std::string cutUtf8(std::string_view text, std::size_t maxBytes)
{
    if (text.size() <= maxBytes)
        return std::string(text);
    std::size_t length = maxBytes;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
        --length;
    return std::string(text.substr(0, length));
}

std::string cleanText(std::string_view text, std::size_t maxBytes)
{
    // What is cut off anyway is not worth reading: a character takes at most four bytes, and the
    // trimming below needs some room.
    text = trimmed(text).substr(0, maxBytes * 4 + 64);
    std::string clean;
    const char *position = text.data();
    const char *end = text.data() + text.size();
    while (position < end) {
        // GLib takes a NUL for the end of the text.
        const gunichar character =
            *position == '\0' ? 0 : g_utf8_get_char_validated(position, end - position);
        if (character == gunichar(-1) || character == gunichar(-2)) {
            clean += '?';
            ++position;
            continue;
        }
        const char *next = g_utf8_next_char(position);
        if (character != 0 && isShowable(character))
            clean.append(position, next);
        else
            clean += ' ';
        position = next;
    }
    return std::string(trimmed(cutUtf8(trimmed(clean), maxBytes)));
}

std::optional<std::string> latin1Of(std::string_view text)
{
    if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        return std::nullopt;
    constexpr gunichar last = 0xff;
    std::string result;
    const char *const end = text.data() + text.size();
    for (const char *at = text.data(); at < end; at = g_utf8_next_char(at)) {
        const gunichar character = g_utf8_get_char(at);
        if (character > last)
            return std::nullopt;
        result += static_cast<char>(character);
    }
    return result;
}

std::string percentDecode(std::string_view text)
{
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && g_ascii_isxdigit(text[i + 1]) &&
            g_ascii_isxdigit(text[i + 2])) {
            decoded += static_cast<char>(g_ascii_xdigit_value(text[i + 1]) * 16 +
                                         g_ascii_xdigit_value(text[i + 2]));
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

std::string percentEncode(std::string_view text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        if (isUnreserved(c)) {
            encoded += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            encoded += '%';
            encoded += digits[byte >> 4];
            encoded += digits[byte & 15];
        }
    }
    return encoded;
}

std::string xmlEscape(std::string_view text)
{
    std::string escaped;
    for (const char c : text) {
        switch (c) {
        case '&':
            escaped += "&amp;";
            break;
        case '<':
            escaped += "&lt;";
            break;
        case '>':
            escaped += "&gt;";
            break;
        case '"':
            escaped += "&quot;";
            break;
        case '\'':
            escaped += "&apos;";
            break;
        default:
            if (static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n')
                escaped += c;
        }
    }
    return escaped;
}

std::string uidFromEndpoint(std::string_view endpoint)
{
    endpoint = trimmed(endpoint);
    for (const std::string_view prefix : {"urn:uuid:", "uuid:"}) {
        if (startsWithNoCase(endpoint, prefix)) {
            endpoint.remove_prefix(prefix.size());
            break;
        }
    }
    if (!std::all_of(endpoint.begin(), endpoint.end(), isUidCharacter))
        return {};
    endpoint = endpoint.substr(0, maxUidLength);
    if (endpoint == "." || endpoint == "..")
        return {};
    return std::string(endpoint);
}

bool sameUid(std::string_view a, std::string_view b)
{
    return equalNoCase(a, b);
}

std::string lowerAscii(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), g_ascii_tolower);
    return lower;
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

} // namespace base
