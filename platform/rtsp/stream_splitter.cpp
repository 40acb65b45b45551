#include "platform/rtsp/stream_splitter.h"

#include <algorithm>
#include <cstring>

namespace rtsp {
namespace {

constexpr uint8_t packetMark = '$';
constexpr size_t packetHead = 4;
// What is looked at of a packet to believe in it after garbage: RTP and RTCP are version 2.
constexpr size_t smallestPacket = 8;
constexpr std::string_view statusWord = "RTSP/";

size_t packetSize(std::span<const uint8_t> data)
{
    return packetHead + (size_t{data[2]} << 8 | data[3]);
}

std::string_view asText(std::span<const uint8_t> data)
{
    return {reinterpret_cast<const char *>(data.data()), data.size()};
}

bool isBlank(uint8_t byte)
{
    return byte == '\r' || byte == '\n' || byte == ' ' || byte == 0;
}

bool beginsMessage(uint8_t byte)
{
    return byte >= 'A' && byte <= 'Z';
}

/// Whether the text is the beginning of a status line, as far as it goes.
bool mayBeReply(std::string_view text)
{
    return statusWord.starts_with(text.substr(0, statusWord.size()));
}

/// Whether a text without the end of its head may become a message: what cannot is not waited for.
bool mayBeMessage(std::string_view text)
{
    const std::string_view word = text.substr(0, text.find(' '));
    return mayBeReply(text) || std::all_of(word.begin(), word.end(), [](char c) {
               return (c >= 'A' && c <= 'Z') || c == '_';
           });
}

} // namespace

bool StreamSplitter::feed(std::span<const uint8_t> data)
{
    while (m_state == State::Reading && !data.empty()) {
        if (m_pending.empty()) {
            const size_t used = consume(data);
            if (m_state == State::Reading)
                m_pending.assign(data.begin() + static_cast<ptrdiff_t>(used), data.end());
            break;
        }
        if (m_pending.front() == packetMark && !m_isLost) {
            completePacket(data);
            continue;
        }
        m_pending.insert(m_pending.end(), data.begin(), data.end());
        const std::vector<uint8_t> whole = std::move(m_pending);
        m_pending.clear();
        const size_t used = consume(whole);
        if (m_state == State::Reading)
            m_pending.assign(whole.begin() + static_cast<ptrdiff_t>(used), whole.end());
        break;
    }
    return m_state != State::Broken;
}

/// Takes from the data what the packet in m_pending lacks.
void StreamSplitter::completePacket(std::span<const uint8_t> &data)
{
    const size_t wanted = m_pending.size() < packetHead ? packetHead : packetSize(m_pending);
    const size_t taken = std::min(wanted - m_pending.size(), data.size());
    m_pending.insert(m_pending.end(), data.begin(), data.begin() + static_cast<ptrdiff_t>(taken));
    data = data.subspan(taken);
    if (m_pending.size() < packetHead || m_pending.size() < packetSize(m_pending))
        return;
    const std::vector<uint8_t> whole = std::move(m_pending);
    m_pending.clear();
    consumePacket(whole);
}

/// The number of bytes that were used; what is left is the beginning of something.
size_t StreamSplitter::consume(std::span<const uint8_t> data)
{
    size_t position = 0;
    while (m_state == State::Reading && position < data.size()) {
        const std::span<const uint8_t> rest = data.subspan(position);
        const size_t before = position;
        m_isWaiting = false;
        if (m_isLost)
            position += skip(rest);
        else if (rest.front() == packetMark)
            position += consumePacket(rest);
        else if (isBlank(rest.front()))
            ++position; // some cameras send an empty line behind a body
        else if (beginsMessage(rest.front()))
            position += consumeMessage(rest);
        else
            m_isLost = true;
        if (position == before && m_isWaiting)
            break;
    }
    return position;
}

size_t StreamSplitter::consumePacket(std::span<const uint8_t> data)
{
    m_isWaiting = data.size() < packetHead || data.size() < packetSize(data);
    if (m_isWaiting)
        return 0;
    const size_t size = packetSize(data);
    understood();
    m_sink.packet(data[1], data.subspan(packetHead, size - packetHead));
    return size;
}

/// Reads a message, or waits for the rest of it, or is lost.
size_t StreamSplitter::consumeMessage(std::span<const uint8_t> data)
{
    const std::string_view text = asText(data);
    const size_t headSize = findHeadEnd(text);
    m_isWaiting = false;
    if (std::min(headSize, text.size()) > m_limits.headBytes) {
        m_isLost = true;
        return 1;
    }
    if (headSize == std::string_view::npos) {
        m_isWaiting = mayBeMessage(text);
        m_isLost = !m_isWaiting;
        return m_isLost ? 1 : 0;
    }
    const std::string_view head = text.substr(0, headSize);
    if (head.starts_with(statusWord)) {
        if (std::optional<Reply> reply = parseReplyHead(head)) {
            const size_t size = bodySize(reply->first("Content-Length"));
            if (!hasBody(text, headSize, size))
                return 0;
            reply->body = text.substr(headSize, size);
            understood();
            m_sink.reply(std::move(*reply));
            return headSize + size;
        }
    } else if (const std::optional<ServerRequest> request = parseRequestHead(head)) {
        const size_t size = bodySize(request->first("Content-Length"));
        if (!hasBody(text, headSize, size))
            return 0;
        understood();
        m_sink.request(*request);
        return headSize + size;
    }
    m_isLost = true;
    return 1;
}

size_t StreamSplitter::bodySize(const std::string &length) const
{
    return length.empty() ? 0 : parseSize(length, 10).value_or(m_limits.bodyBytes + 1);
}

/// Whether the body is there; waits for it where not, but not for one over the limit.
bool StreamSplitter::hasBody(std::string_view text, size_t headSize, size_t size)
{
    m_isWaiting = text.size() - headSize < size;
    if (size > m_limits.bodyBytes)
        m_state = State::Broken;
    return !m_isWaiting && m_state == State::Reading;
}

/// Passes over what cannot be read, up to what looks like a packet or an answer.
size_t StreamSplitter::skip(std::span<const uint8_t> data)
{
    size_t position = 0;
    m_isWaiting = false;
    for (; position < data.size() && m_isLost && !m_isWaiting; ++position) {
        const std::span<const uint8_t> rest = data.subspan(position);
        if (rest.front() == packetMark) {
            m_isWaiting = rest.size() <= packetHead;
            m_isLost = m_isWaiting || packetSize(rest) < packetHead + smallestPacket ||
                       rest[packetHead] >> 6 != 2;
        } else if (rest.front() == statusWord.front()) {
            m_isWaiting = rest.size() < statusWord.size() && mayBeReply(asText(rest));
            m_isLost = m_isWaiting || !asText(rest).starts_with(statusWord);
        }
        if (!m_isLost || m_isWaiting)
            break;
    }
    m_garbage += position;
    if (m_garbage > (m_isRtsp ? m_limits.garbageBytes : m_limits.strangerBytes))
        m_state = State::Broken;
    return position;
}

void StreamSplitter::understood()
{
    m_garbage = 0;
    m_isRtsp = true;
}

} // namespace rtsp
