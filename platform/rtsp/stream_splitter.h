#pragma once

#include "platform/rtsp/message_head.h"

#include <cstdint>
#include <span>
#include <vector>

namespace rtsp {

/**
 * Cuts what a camera sends over an RTSP connection into answers, requests and interleaved packets
 * (RFC 2326 10.12). Packets are handed over where they lie; only what is incomplete at the end of
 * the bytes is kept. Where a camera sends something else, everything up to the next packet or
 * answer is passed over.
 */
class StreamSplitter
{
public:
    class Sink
    {
    public:
        virtual ~Sink() = default;
        /// The bytes are valid during the call.
        virtual void packet(uint8_t channel, std::span<const uint8_t> data) = 0;
        virtual void reply(Reply reply) = 0;
        virtual void request(const ServerRequest &request) = 0;
    };

    struct Limits
    {
        size_t headBytes = size_t{16} * 1024;
        size_t bodyBytes = size_t{64} * 1024;
        size_t garbageBytes = size_t{256} * 1024; ///< between two things that can be read
        size_t strangerBytes = size_t{4} * 1024;  ///< the same, before the first of them
    };

    explicit StreamSplitter(Sink &sink) : StreamSplitter(sink, Limits{}) {}
    StreamSplitter(Sink &sink, Limits limits) : m_sink(sink), m_limits(limits) {}

    /// False, for good, when this is not RTSP or a message is over the limits.
    bool feed(std::span<const uint8_t> data);
    /// The sink is not called any more; may be called by the sink.
    void stop() { m_state = State::Stopped; }
    /// Whether a message or packet has begun and is not complete.
    bool hasBegun() const { return !m_pending.empty(); }

private:
    enum class State
    {
        Reading,
        Stopped,
        Broken
    };

    void completePacket(std::span<const uint8_t> &data);
    size_t consume(std::span<const uint8_t> data);
    size_t consumePacket(std::span<const uint8_t> data);
    size_t consumeMessage(std::span<const uint8_t> data);
    size_t bodySize(const std::string &length) const;
    bool hasBody(std::string_view text, size_t headSize, size_t size);
    size_t skip(std::span<const uint8_t> data);
    void understood();

    Sink &m_sink;
    const Limits m_limits;
    State m_state = State::Reading;
    std::vector<uint8_t> m_pending;
    size_t m_garbage = 0;     ///< bytes passed over since the last thing that could be read
    bool m_isRtsp = false;    ///< something could be read
    bool m_isLost = false;    ///< looks for the next packet or answer
    bool m_isWaiting = false; ///< the bytes are the beginning of something
};

} // namespace rtsp
