#pragma once

#include <pugixml.hpp>

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace onvif {

/// A SOAP message read from the network. Devices choose their own namespace prefixes, so elements
/// are found by their local names.
class XmlMessage
{
public:
    /// The longest message that is read, in bytes.
    static constexpr std::size_t maxBytes = std::size_t{1024} * 1024;
    /// How deep and how many elements a message may have.
    static constexpr int maxDepth = 64;
    static constexpr int maxNodes = 50'000;

    /// nullopt when it is too large, too deep, not well formed, has a document type (SOAP 1.2
    /// part 1, 5: none allowed; entities other than XML's own five are never replaced) or is no
    /// SOAP envelope.
    static std::optional<XmlMessage> parse(std::string_view text);

    /// The element Body, which may be empty.
    [[nodiscard]] pugi::xml_node body() const;
    [[nodiscard]] pugi::xml_node header() const;

private:
    XmlMessage() = default;

    pugi::xml_document m_document;
};

/// Name without its prefix.
std::string_view localName(pugi::xml_node node);

/// First child element with this local name; null node when there is none.
pugi::xml_node child(pugi::xml_node node, std::string_view name);

/// Follows a path of local names.
pugi::xml_node child(pugi::xml_node node, std::initializer_list<std::string_view> path);

/// All child elements with this local name.
std::vector<pugi::xml_node> children(pugi::xml_node node, std::string_view name);

/// Attribute with this local name; empty when there is none.
std::string_view attribute(pugi::xml_node node, std::string_view name);

/// Text of an element, trimmed; valid as long as the message.
std::string_view textOf(pugi::xml_node node);

/// Text of an element that is "true" or "1".
bool isTrue(pugi::xml_node node);

/// Text of an element as a decimal number; fallback when it is none or does not fit.
int numberOf(pugi::xml_node node, int fallback);

} // namespace onvif
