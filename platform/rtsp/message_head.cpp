#include "platform/rtsp/message_head.h"

#include "platform/base/text.h"

#include <glib.h>

#include <algorithm>

namespace rtsp {
namespace {

using base::equalNoCase;
using base::trimmed;

/// Cuts the first line off.
std::string_view takeLine(std::string_view &text)
{
    const size_t feed = text.find('\n');
    const std::string_view line = trimmed(text.substr(0, feed));
    text.remove_prefix(feed == std::string_view::npos ? text.size() : feed + 1);
    return line;
}

Headers parseHeaders(std::string_view lines)
{
    Headers headers;
    while (!lines.empty()) {
        const std::string_view line = takeLine(lines);
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos)
            headers.emplace_back(trimmed(line.substr(0, colon)), trimmed(line.substr(colon + 1)));
    }
    return headers;
}

std::string firstOf(const Headers &headers, std::string_view name)
{
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto &header) {
        return equalNoCase(header.first, name);
    });
    return found == headers.end() ? std::string() : found->second;
}

bool isMethodCharacter(char c)
{
    return g_ascii_isupper(c) || c == '_';
}

} // namespace

std::vector<std::string> Reply::all(std::string_view name) const
{
    std::vector<std::string> values;
    for (const auto &[key, value] : headers)
        if (equalNoCase(key, name))
            values.push_back(value);
    return values;
}

std::string Reply::first(std::string_view name) const
{
    return firstOf(headers, name);
}

std::string ServerRequest::first(std::string_view name) const
{
    return firstOf(headers, name);
}

size_t findHeadEnd(std::string_view data)
{
    for (size_t feed = data.find('\n'); feed != std::string_view::npos;
         feed = data.find('\n', feed + 1)) {
        const std::string_view rest = data.substr(feed + 1);
        if (rest.starts_with('\n'))
            return feed + 2;
        if (rest.starts_with("\r\n"))
            return feed + 3;
    }
    return std::string_view::npos;
}

std::optional<Reply> parseReplyHead(std::string_view head)
{
    const std::string_view statusLine = takeLine(head);
    const size_t blank = statusLine.find(' ');
    if (blank == std::string_view::npos)
        return std::nullopt;
    const std::string_view code = statusLine.substr(blank + 1, 3);
    const std::optional<size_t> status = parseSize(code, 10);
    if (code.size() != 3 || !status || *status < 100)
        return std::nullopt;
    Reply reply;
    reply.status = static_cast<int>(*status);
    reply.headers = parseHeaders(head);
    const std::string connection = reply.first("Connection");
    const bool oldHttp = statusLine.starts_with("HTTP/1.0");
    reply.keepsConnection =
        oldHttp ? equalNoCase(connection, "keep-alive") : !equalNoCase(connection, "close");
    return reply;
}

std::optional<ServerRequest> parseRequestHead(std::string_view head)
{
    const std::string_view requestLine = takeLine(head);
    const size_t blank = requestLine.find(' ');
    const std::string_view method = requestLine.substr(0, blank);
    if (blank == std::string_view::npos || method.empty() ||
        !std::all_of(method.begin(), method.end(), isMethodCharacter) ||
        requestLine.find("RTSP/", blank) == std::string_view::npos)
        return std::nullopt;
    return ServerRequest{std::string(method), parseHeaders(head)};
}

std::optional<size_t> parseSize(std::string_view text, unsigned base)
{
    if (text.empty() || text.size() > 15)
        return std::nullopt;
    size_t value = 0;
    for (const char c : text) {
        const int digit = g_ascii_xdigit_value(c);
        if (digit < 0 || digit >= static_cast<int>(base))
            return std::nullopt;
        value = value * base + static_cast<size_t>(digit);
    }
    return value;
}

} // namespace rtsp
