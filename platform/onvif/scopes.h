#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace onvif {

using MacAddress = std::array<std::uint8_t, 6>;

/// What a device reports about itself in its scopes (ONVIF Core 7.3.2.2), cleaned for display.
struct ScopeTexts
{
    std::string name;
    std::string model;    ///< the scope "hardware"
    std::string location; ///< several locations are joined by ", "
    std::optional<MacAddress> mac;
};

/// How long each of the texts may be, in bytes.
inline constexpr std::size_t maxScopeText = 256;

ScopeTexts textsFromScopes(const std::vector<std::string> &scopes);

/// The scope that says a text, such as "onvif://www.onvif.org/name/Front%20door". kind is "name"
/// or "location"; a location may be a path, "country/city".
std::string scopeFor(std::string_view kind, std::string_view text);

/// Whether a scope is of this kind ("name", "hardware", "location"), whatever its text.
bool isScopeOf(std::string_view scope, std::string_view kind);

/// Reads twelve hexadecimal digits, alone or in pairs with ":" or "-" between; nullopt for
/// everything else, for the zero address and for group addresses.
std::optional<MacAddress> parseMac(std::string_view text);

} // namespace onvif
