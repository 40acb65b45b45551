#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// The longest UID, in characters: what the device record of the discovery library can hold.
/// Longer ones are cut, everywhere alike, so that a UID that was shown can be looked up again.
inline constexpr std::size_t maxUidLength = 41;

/// Cuts to at most maxBytes bytes without splitting a UTF-8 character.
std::string cutUtf8(std::string_view text, std::size_t maxBytes);

/// Text from a device, fit to be shown: valid UTF-8 without control and direction characters
/// (each becomes a blank, a broken byte becomes "?"), trimmed, at most maxBytes bytes.
std::string cleanText(std::string_view text, std::size_t maxBytes);

/// The text in ISO 8859-1; nullopt when it has other characters, or is no UTF-8.
std::optional<std::string> latin1Of(std::string_view text);

/// Replaces %41 by A and so on; sequences that are not two hexadecimal digits stay.
std::string percentDecode(std::string_view text);

/// Writes all but unreserved characters (RFC 3986 2.3) as %XX.
std::string percentEncode(std::string_view text);

/// Escapes text for the content of an XML element or attribute. Characters XML cannot hold are left
/// out.
std::string xmlEscape(std::string_view text);

/// Without regard to the case of ASCII letters.
bool startsWithNoCase(std::string_view text, std::string_view prefix);
bool equalNoCase(std::string_view a, std::string_view b);

/// The UID of an endpoint address: the UUID of "urn:uuid:" and "uuid:" addresses, other addresses
/// as they are, cut to maxUidLength. Empty when it has a character outside letters, digits,
/// "-", "_", "." and ":", or is "." or "..": UIDs become folder names.
std::string uidFromEndpoint(std::string_view endpoint);

/// Whether two UIDs name the same device (UUIDs are compared without regard to case).
bool sameUid(std::string_view a, std::string_view b);

/// Lower-case ASCII letters; other bytes as they are.
std::string lowerAscii(std::string_view text);

/// Without leading and trailing white space.
std::string_view trimmed(std::string_view text);

} // namespace base
