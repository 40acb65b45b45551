#include "platform/onvif/xml_message.h"

#include "platform/base/text.h"

#include <charconv>

namespace onvif {

namespace {

std::string_view withoutPrefix(std::string_view name)
{
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

// Walks without recursion: a hostile depth must not cost stack.
bool isWithinLimits(const pugi::xml_document &document)
{
    int depth = 0;
    int count = 0;
    pugi::xml_node node = document.first_child();
    while (node) {
        if (node.type() == pugi::node_doctype || ++count > XmlMessage::maxNodes)
            return false;
        if (pugi::xml_node first = node.first_child()) {
            if (++depth > XmlMessage::maxDepth)
                return false;
            node = first;
            continue;
        }
        while (node && !node.next_sibling()) {
            node = node.parent();
            --depth;
        }
        if (node)
            node = node.next_sibling();
    }
    return true;
}

} // namespace

std::optional<XmlMessage> XmlMessage::parse(std::string_view text)
{
    if (text.empty() || text.size() > maxBytes)
        return std::nullopt;
    XmlMessage message;
    const auto options = pugi::parse_default | pugi::parse_doctype;
    if (!message.m_document.load_buffer(text.data(), text.size(), options))
        return std::nullopt;
    if (!isWithinLimits(message.m_document) || !message.body())
        return std::nullopt;
    return message;
}

pugi::xml_node XmlMessage::body() const
{
    return child(m_document, {"Envelope", "Body"});
}

pugi::xml_node XmlMessage::header() const
{
    return child(m_document, {"Envelope", "Header"});
}

std::string_view localName(pugi::xml_node node)
{
    return withoutPrefix(node.name());
}

pugi::xml_node child(pugi::xml_node node, std::string_view name)
{
    for (const pugi::xml_node candidate : node.children())
        if (candidate.type() == pugi::node_element && localName(candidate) == name)
            return candidate;
    return {};
}

pugi::xml_node child(pugi::xml_node node, std::initializer_list<std::string_view> path)
{
    for (const std::string_view name : path)
        node = child(node, name);
    return node;
}

std::vector<pugi::xml_node> children(pugi::xml_node node, std::string_view name)
{
    std::vector<pugi::xml_node> found;
    for (const pugi::xml_node candidate : node.children())
        if (candidate.type() == pugi::node_element && localName(candidate) == name)
            found.push_back(candidate);
    return found;
}

std::string_view attribute(pugi::xml_node node, std::string_view name)
{
    for (const pugi::xml_attribute candidate : node.attributes())
        if (withoutPrefix(candidate.name()) == name)
            return candidate.value();
    return {};
}

std::string_view textOf(pugi::xml_node node)
{
    return base::trimmed(node.child_value());
}

bool isTrue(pugi::xml_node node)
{
    const std::string_view text = textOf(node);
    return text == "true" || text == "1";
}

int numberOf(pugi::xml_node node, int fallback)
{
    const std::string_view text = textOf(node);
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() && !text.empty() ? number
                                                                                     : fallback;
}

} // namespace onvif
