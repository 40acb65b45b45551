#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace camsim {

/// Cuts a byte stream of RTSP or HTTP into whole messages (head and body) and interleaved data
/// packets (RFC 2326 10.12). Bytes that are neither go through as they are.
class MessageSplitter
{
public:
    enum class Kind
    {
        Message,
        Packet
    };
    using Sink = std::function<void(Kind kind, std::string unit)>;

    explicit MessageSplitter(Sink sink) : m_sink(std::move(sink)) {}
    void feed(std::string_view bytes);

private:
    /// Length of the unit at the start of the text; 0 while it is not complete.
    static std::size_t unitLength(std::string_view text);

    Sink m_sink;
    std::string m_pending;
};

/// The value of a header line in the head of a message, without blanks around it; empty when the
/// header is missing. Names are compared without regard to case.
std::string_view headerValue(std::string_view message, std::string_view name);

} // namespace camsim
