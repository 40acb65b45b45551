#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace rtsp {

/// Two channels or ports: one of RTP, one of RTCP.
using NumberPair = std::pair<uint16_t, uint16_t>;

/// What a camera chose of the transports it was asked for (RFC 2326 12.39).
struct TransportAnswer
{
    bool isTcp = false; ///< it says so
    bool isUdp = false; ///< it says so, or names ports
    bool isMulticast = false;
    std::optional<NumberPair> interleaved;
    std::optional<NumberPair> serverPorts;
    std::string source; ///< the address that the media come from; empty when it is not told
};

/// Reads a Transport header; what cannot be read is left out.
TransportAnswer parseTransport(std::string_view header);

std::string interleavedTransport(NumberPair channels);
std::string udpTransport(NumberPair clientPorts);

/// A Session header (RFC 2326 12.37).
struct SessionHeader
{
    std::string id;
    int timeoutSeconds = 60; ///< at least 2
};

SessionHeader parseSession(std::string_view header);

} // namespace rtsp
