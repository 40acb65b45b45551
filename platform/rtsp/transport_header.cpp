#include "platform/rtsp/transport_header.h"

#include "platform/base/text.h"
#include "platform/rtsp/message_head.h"

#include <algorithm>

namespace rtsp {
namespace {

using base::lowerAscii;
using base::trimmed;

constexpr size_t maxNumber = 65535;
constexpr size_t maxTimeoutSeconds = 24 * 3600;
constexpr size_t minTimeoutSeconds = 2;

/// Cuts the next part off, without blanks.
std::string_view takePart(std::string_view &text, char separator)
{
    const size_t end = std::min(text.find(separator), text.size());
    const std::string_view part = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

/// "4-5", or "4", which stands for 4-5.
std::optional<NumberPair> parsePair(std::string_view text)
{
    const std::optional<size_t> first = parseSize(takePart(text, '-'), 10);
    if (!first || *first >= maxNumber)
        return std::nullopt;
    const size_t second = parseSize(trimmed(text), 10).value_or(*first + 1);
    if (second > maxNumber)
        return std::nullopt;
    return NumberPair(static_cast<uint16_t>(*first), static_cast<uint16_t>(second));
}

std::string unquoted(std::string_view text)
{
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    return std::string(text);
}

std::string pairText(NumberPair pair)
{
    return std::to_string(pair.first) + '-' + std::to_string(pair.second);
}

} // namespace

TransportAnswer parseTransport(std::string_view header)
{
    TransportAnswer answer;
    std::string_view first = takePart(header, ',');
    const std::string protocol = lowerAscii(takePart(first, ';'));
    answer.isTcp = protocol.ends_with("/tcp");
    answer.isUdp = protocol.ends_with("/udp");
    while (!first.empty()) {
        std::string_view value = takePart(first, ';');
        const std::string name = lowerAscii(takePart(value, '='));
        value = trimmed(value);
        if (name == "interleaved")
            answer.interleaved = parsePair(value);
        else if (name == "server_port")
            answer.serverPorts = parsePair(value);
        else if (name == "source")
            answer.source = unquoted(value);
        else if (name == "multicast")
            answer.isMulticast = true;
    }
    answer.isTcp = answer.isTcp || answer.interleaved;
    answer.isUdp = !answer.isTcp && (answer.isUdp || answer.serverPorts);
    return answer;
}

std::string interleavedTransport(NumberPair channels)
{
    return "RTP/AVP/TCP;unicast;interleaved=" + pairText(channels);
}

std::string udpTransport(NumberPair clientPorts)
{
    return "RTP/AVP;unicast;client_port=" + pairText(clientPorts);
}

SessionHeader parseSession(std::string_view header)
{
    SessionHeader session;
    session.id = takePart(header, ';');
    while (!header.empty()) {
        std::string_view value = takePart(header, ';');
        if (lowerAscii(takePart(value, '=')) != "timeout")
            continue;
        // Some cameras write a unit or a fraction behind the number.
        const std::string_view digits = value.substr(0, value.find_first_not_of("0123456789"));
        if (const std::optional<size_t> seconds = parseSize(digits, 10))
            session.timeoutSeconds =
                static_cast<int>(std::clamp(*seconds, minTimeoutSeconds, maxTimeoutSeconds));
    }
    return session;
}

} // namespace rtsp
