#pragma once

#include "platform/onvif/scopes.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace onvif {

/// The device types that ONVIF devices announce (ONVIF Core 7.3.2.1).
enum class ProbeType
{
    Device,                  ///< tds:Device
    NetworkVideoTransmitter, ///< dn:NetworkVideoTransmitter
};

/// A device that answered a search or said Hello.
struct DiscoveredDevice
{
    std::string uid;                 ///< see uidFromEndpoint
    std::vector<std::string> xaddrs; ///< as advertised, not to be trusted
    std::string name;
    std::string model;
    std::string location;
    std::optional<MacAddress> mac;
    std::string senderAddress;  ///< where the answer came from; filled by the search
    std::string serviceAddress; ///< see chooseXAddr; filled by the search
};

/// One datagram that was understood.
struct DiscoveryAnswer
{
    std::string relatesTo; ///< message identifier that is answered, without "urn:uuid:"
    std::vector<DiscoveredDevice> devices;
};

/// The largest datagram of UDP.
inline constexpr std::size_t maxDatagram = 65'536;
/// Maximum of devices in one datagram.
inline constexpr std::size_t maxDevicesInAnswer = 64;

/// Asks all devices of a type to answer. messageId is a bare UUID.
std::string buildProbe(ProbeType type, std::string_view messageId);

/// Asks the device with this UID where it is.
std::string buildResolve(std::string_view uid, std::string_view messageId);

/// Reads ProbeMatches, ResolveMatches or Hello (WS-Discovery 1.0, April 2005). Devices without a
/// usable UID are left out; nullopt when it is no such message.
std::optional<DiscoveryAnswer> parseDiscoveryAnswer(std::string_view datagram);

} // namespace onvif
