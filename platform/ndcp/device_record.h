#pragma once

#include "platform/ndcp/ndcp.h"
#include "platform/onvif/text.h"
#include "platform/onvif/ws_discovery_message.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace ndcp {

/// Writes a text to a field of the record: cut on the border of a UTF-8 character, the rest of the
/// field zero, always terminated.
template <std::size_t size>
void setField(char (&field)[size], std::string_view text)
{
    const std::string cut = onvif::cutUtf8(text, size - 1);
    std::fill(std::copy(cut.begin(), cut.end(), field), field + size, '\0');
}

/// Text of a field, also of one that is not terminated.
template <std::size_t size>
std::string fieldText(const char (&field)[size])
{
    return {field, std::find(field, field + size, '\0')};
}

/// Text that a user typed, as UTF-8: what is no UTF-8 is taken as Latin-1.
std::string typedText(std::string_view bytes);

/// The record of a device that a search found, without network configuration and credentials.
ndcp_device recordOf(const onvif::DiscoveredDevice &device);

/// The HTTP port of a record, which is a signed field.
int httpPort(const ndcp_device &record);
void setHttpPort(ndcp_device &record, int port);

} // namespace ndcp
