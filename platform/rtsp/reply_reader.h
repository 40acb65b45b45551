#pragma once

#include "platform/rtsp/message_head.h"

#include <string>
#include <string_view>

namespace rtsp {

/**
 * Cuts what a camera sends into replies (RFC 2326 7, RFC 9112 6): status line, headers, and a body
 * by Content-Length, in chunks, or up to the end of the connection. Whatever the camera sends,
 * memory stays within the limits.
 */
class ReplyReader
{
public:
    enum class Protocol
    {
        Rtsp,
        Http
    };
    enum class State
    {
        Incomplete,
        Complete, ///< take() the reply; more bytes may be buffered for the next one
        Broken    ///< no reply of this protocol, or one over the limits; for good
    };
    struct Limits
    {
        size_t headerBytes = size_t{16} * 1024;
        size_t bodyBytes = size_t{64} * 1024;
    };

    explicit ReplyReader(Protocol protocol) : ReplyReader(protocol, Limits{}) {}
    ReplyReader(Protocol protocol, Limits limits) : m_protocol(protocol), m_limits(limits) {}

    State feed(std::string_view data);
    /// The connection ended: completes a body that only the end delimits.
    State end();
    /// Whether a reply has begun and is not complete.
    bool hasBegun() const { return !m_buffer.empty() || m_part != Part::Head; }

    /// The complete reply; the reader continues with the next one.
    Reply take();
    /// The bytes of a camera that answers without any HTTP head; empty once there was a head.
    std::string takeBareText();
    /// Whether what came so far cannot become a reply with a head.
    bool isBareText() const;

private:
    enum class Part
    {
        Head,
        SizedBody,
        Chunks,
        OpenBody,
        Done
    };

    State advance();
    void chooseBody();
    State readSized();
    State readChunks();
    State readOpen();
    State broken();

    Protocol m_protocol;
    Limits m_limits;
    Part m_part = Part::Head;
    bool m_broken = false;
    size_t m_bodySize = 0;
    std::string m_buffer;
    Reply m_reply;
};

} // namespace rtsp
