#include "platform/rtsp/reply_reader.h"

#include "platform/base/text.h"

#include <glib.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace rtsp {
namespace {

bool equalNoCase(const std::string &a, const char *b)
{
    return g_ascii_strcasecmp(a.c_str(), b) == 0;
}

} // namespace

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
        const size_t end = findHeadEnd(m_buffer);
        if (std::min(end, m_buffer.size()) > m_limits.headerBytes)
            return broken();
        if (end == std::string::npos)
            return State::Incomplete;
        std::optional<Reply> head = parseReplyHead(std::string_view(m_buffer).substr(0, end));
        if (!head)
            return broken();
        m_reply = std::move(*head);
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
            const size_t end = findHeadEnd(std::string_view(m_buffer));
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
