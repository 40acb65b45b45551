#include "camsim/message_splitter.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace camsim {

namespace {

constexpr std::string_view headEnd = "\r\n\r\n";
constexpr std::size_t packetHead = 4;
// A head or body larger than this is not cut any more: it is passed on in pieces.
constexpr std::size_t largest = 8U << 20;

bool equalNoCase(std::string_view a, std::string_view b)
{
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(),
        [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

std::string_view trim(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

} // namespace

std::string_view headerValue(std::string_view message, std::string_view name)
{
    std::string_view head = message.substr(0, message.find(headEnd));
    while (true) {
        const std::size_t end = head.find("\r\n");
        if (end == std::string_view::npos)
            return {};
        head.remove_prefix(end + 2);
        const std::string_view line = head.substr(0, head.find("\r\n"));
        const std::size_t colon = line.find(':');
        if (colon != std::string_view::npos && equalNoCase(line.substr(0, colon), name))
            return trim(line.substr(colon + 1));
    }
}

std::size_t MessageSplitter::unitLength(std::string_view text)
{
    if (text[0] == '$') {
        if (text.size() < packetHead)
            return 0;
        const auto high = static_cast<unsigned char>(text[2]);
        const auto low = static_cast<unsigned char>(text[3]);
        const std::size_t length = packetHead + (std::size_t{high} << 8 | low);
        return text.size() < length ? 0 : length;
    }
    const std::size_t head = text.find(headEnd);
    if (head == std::string_view::npos)
        return text.size() > largest ? text.size() : 0;
    const std::string_view value = headerValue(text, "Content-Length");
    std::size_t body = 0;
    std::from_chars(value.data(), value.data() + value.size(), body);
    const std::size_t length = head + headEnd.size() + std::min(body, largest);
    return text.size() < length ? 0 : length;
}

void MessageSplitter::feed(std::string_view bytes)
{
    m_pending.append(bytes);
    std::string_view rest = m_pending;
    while (!rest.empty()) {
        const std::size_t length = unitLength(rest);
        if (length == 0)
            break;
        m_sink(rest[0] == '$' ? Kind::Packet : Kind::Message, std::string(rest.substr(0, length)));
        rest.remove_prefix(length);
    }
    m_pending.erase(0, m_pending.size() - rest.size());
}

} // namespace camsim
