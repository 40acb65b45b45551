#include "platform/rtsp/reply_reader.h"

#include "platform/base/text.h"

#include <glib.h>

#include <algorithm>
#include <optional>

namespace rtsp {
namespace {

bool equalNoCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && g_ascii_strncasecmp(a.data(), b.data(), a.size()) == 0;
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

/// The end of the blank line after the headers; some cameras end lines with a bare line feed.
size_t headEnd(std::string_view data)
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
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const auto &header) {
        return equalNoCase(header.first, name);
    });
    return found == headers.end() ? std::string() : found->second;
}

ReplyReader::State ReplyReader::feed(std::string_view data)
{
    if (m_broken)
        return State::Broken;
    m_buffer += data;
    return advance();
}

ReplyReader::State ReplyReader::end()
{
    if (m_broken || m_part == Part::Done)
        return m_broken ? State::Broken : State::Complete;
    if (m_part != Part::OpenBody)
        return broken();
    m_reply.keepsConnection = false;
    m_part = Part::Done;
    return State::Complete;
}

Reply ReplyReader::take()
{
    Reply reply = std::move(m_reply);
    m_reply = {};
    m_part = Part::Head;
    return reply;
}

std::string ReplyReader::takeBareText()
{
    return m_part == Part::Head ? std::exchange(m_buffer, {}) : std::string();
}

bool ReplyReader::isBareText() const
{
    const std::string_view word = m_protocol == Protocol::Rtsp ? "RTSP/" : "HTTP/";
    const std::string_view begin = std::string_view(m_buffer).substr(0, word.size());
    return m_part == Part::Head && !m_buffer.empty() && !word.starts_with(begin);
}

ReplyReader::State ReplyReader::advance()
{
    if (m_part == Part::Head) {
        if (isBareText())
            return broken();
        const size_t end = headEnd(m_buffer);
        if (std::min(end, m_buffer.size()) > m_limits.headerBytes)
            return broken();
        if (end == std::string::npos)
            return State::Incomplete;
        if (!parseHead(std::string_view(m_buffer).substr(0, end)))
            return broken();
        m_buffer.erase(0, end);
        if (m_protocol == Protocol::Http && m_reply.status < 200) {
            // 100 Continue and its like announce the reply proper (RFC 9110 15.2).
            m_reply = {};
            return advance();
        }
        chooseBody();
    }
    switch (m_part) {
    case Part::SizedBody:
        return readSized();
    case Part::Chunks:
        return readChunks();
    case Part::OpenBody:
        return readOpen();
    default:
        return m_broken ? State::Broken : State::Complete;
    }
}

bool ReplyReader::parseHead(std::string_view head)
{
    size_t lineEnd = head.find('\n');
    const std::string_view statusLine = base::trimmed(head.substr(0, lineEnd));
    const size_t blank = statusLine.find(' ');
    if (blank == std::string_view::npos)
        return false;
    const std::string_view code = statusLine.substr(blank + 1, 3);
    const std::optional<size_t> status = parseSize(code, 10);
    if (code.size() != 3 || !status || *status < 100)
        return false;
    m_reply.status = static_cast<int>(*status);

    while (lineEnd != std::string_view::npos) {
        head.remove_prefix(lineEnd + 1);
        lineEnd = head.find('\n');
        const std::string_view line = head.substr(0, lineEnd);
        const size_t colon = line.find(':');
        if (colon != std::string_view::npos)
            m_reply.headers.emplace_back(base::trimmed(line.substr(0, colon)),
                                         base::trimmed(line.substr(colon + 1)));
    }
    const std::string connection = m_reply.first("Connection");
    const bool oldHttp = statusLine.starts_with("HTTP/1.0");
    m_reply.keepsConnection =
        oldHttp ? equalNoCase(connection, "keep-alive") : !equalNoCase(connection, "close");
    return true;
}

void ReplyReader::chooseBody()
{
    const std::string length = m_reply.first("Content-Length");
    const bool http = m_protocol == Protocol::Http;
    if (http && (m_reply.status == 204 || m_reply.status == 304)) {
        m_part = Part::Done;
    } else if (http && equalNoCase(m_reply.first("Transfer-Encoding"), "chunked")) {
        m_part = Part::Chunks;
    } else if (length.empty()) {
        m_part = http ? Part::OpenBody : Part::Done;
    } else {
        const std::optional<size_t> size = parseSize(length, 10);
        m_bodySize = size.value_or(m_limits.bodyBytes + 1);
        m_part = Part::SizedBody;
    }
}

ReplyReader::State ReplyReader::readSized()
{
    if (m_bodySize > m_limits.bodyBytes)
        return broken();
    if (m_buffer.size() < m_bodySize)
        return State::Incomplete;
    m_reply.body = m_buffer.substr(0, m_bodySize);
    m_buffer.erase(0, m_bodySize);
    m_part = Part::Done;
    return State::Complete;
}

ReplyReader::State ReplyReader::readChunks()
{
    for (;;) {
        const size_t feed = m_buffer.find('\n');
        if (std::min(feed, m_buffer.size()) > m_limits.headerBytes)
            return broken();
        if (feed == std::string::npos)
            return State::Incomplete;
        const std::string_view line = std::string_view(m_buffer).substr(0, feed);
        const std::optional<size_t> size =
            parseSize(base::trimmed(line.substr(0, line.find(';'))), 16);
        if (!size || *size + m_reply.body.size() > m_limits.bodyBytes)
            return broken();
        if (*size == 0) {
            // Trailers are headers after the last chunk; nobody here needs them.
            const size_t end = headEnd(std::string_view(m_buffer));
            if (std::min(end, m_buffer.size()) > m_limits.headerBytes)
                return broken();
            if (end == std::string::npos)
                return State::Incomplete;
            m_buffer.erase(0, end);
            m_part = Part::Done;
            return State::Complete;
        }
        const size_t dataEnd = feed + 1 + *size;
        const size_t next = m_buffer.find('\n', dataEnd);
        if (std::min(next, m_buffer.size()) > dataEnd + 1)
            return broken();
        if (next == std::string::npos)
            return State::Incomplete;
        m_reply.body.append(m_buffer, feed + 1, *size);
        m_buffer.erase(0, next + 1);
    }
}

ReplyReader::State ReplyReader::readOpen()
{
    m_reply.body += std::exchange(m_buffer, {});
    return m_reply.body.size() > m_limits.bodyBytes ? broken() : State::Incomplete;
}

ReplyReader::State ReplyReader::broken()
{
    m_broken = true;
    return State::Broken;
}

} // namespace rtsp
