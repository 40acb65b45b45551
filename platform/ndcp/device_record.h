#pragma once

#include "platform/base/text.h"
#include "platform/ndcp/ndcp.h"
#include "platform/onvif/ws_discovery_message.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ndcp {

/// What HTTP servers use, and what a device is taken to use until its configuration was read.
inline constexpr int usualWebPort = 80;

/// Writes a text to a field of the record: cut on the border of a UTF-8 character, the rest of the
/// field zero, always terminated.
template <std::size_t size>
void setField(char (&field)[size], std::string_view text)
{
    const std::string cut = base::cutUtf8(text, size - 1);
    std::fill(std::copy(cut.begin(), cut.end(), field), field + size, '\0');
}

/// Text of a field, also of one that is not terminated.
template <std::size_t size>
std::string fieldText(const char (&field)[size])
{
    return {field, std::find(field, field + size, '\0')};
}

/// Bits for the fields of a record whose values were read from the device. Stored in the record
/// itself, which clients copy whole.
enum ReadPart : std::uint8_t
{
    ReadInterface = 1, ///< address, mask and how they are assigned
    ReadGateway = 2,
    ReadDns = 4,
};

/// The record of a device that a search found, without network configuration and credentials.
/// webPort: the port of its web pages as far as it is known.
ndcp_device recordOf(const onvif::DiscoveredDevice &device, int webPort = usualWebPort);

/// Notes that parts (ReadPart values) of the record have been read, besides those before.
void markRead(ndcp_device &record, unsigned parts);
bool wasRead(const ndcp_device &record, ReadPart part);

/// The HTTP port of a record, which is a signed field.
int httpPort(const ndcp_device &record);

/// Sets the port as the library knows it.
void setHttpPort(ndcp_device &record, int port);

/// Whether the record holds another port than the library gave it.
bool isPortChanged(const ndcp_device &record);

} // namespace ndcp
