#include "camsim/soap.h"

#include <glib.h>

#include <cstdlib>
#include <sstream>

namespace camsim::soap {

namespace {

std::string decodeBase64(const std::string &text)
{
    gsize size = 0;
    guchar *bytes = g_base64_decode(text.c_str(), &size);
    std::string result(reinterpret_cast<const char *>(bytes), size);
    g_free(bytes);
    return result;
}

std::string sha1Base64(const std::string &bytes)
{
    GChecksum *checksum = g_checksum_new(G_CHECKSUM_SHA1);
    g_checksum_update(checksum, reinterpret_cast<const guchar *>(bytes.data()),
                      static_cast<gssize>(bytes.size()));
    guint8 digest[20];
    gsize size = sizeof digest;
    g_checksum_get_digest(checksum, digest, &size);
    g_checksum_free(checksum);
    gchar *text = g_base64_encode(digest, size);
    std::string result(text);
    g_free(text);
    return result;
}

std::string trimmed(const char *text)
{
    std::string_view view(text);
    const auto first = view.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    const auto last = view.find_last_not_of(" \t\r\n");
    return std::string(view.substr(first, last - first + 1));
}

} // namespace

bool UsernameToken::proves(const std::string &password, std::time_t clock, int maxSkew) const
{
    const std::optional<std::time_t> made = parseTime(created);
    if (!made || std::abs(static_cast<long>(clock - *made)) > maxSkew)
        return false;
    return sha1Base64(decodeBase64(nonce) + created + password) == digest;
}

std::string_view localName(const pugi::xml_node &node)
{
    const std::string_view name = node.name();
    const auto colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

pugi::xml_node child(const pugi::xml_node &node, std::string_view name)
{
    for (const pugi::xml_node &candidate : node.children())
        if (localName(candidate) == name)
            return candidate;
    return {};
}

std::string textAt(pugi::xml_node node, std::string_view path)
{
    while (!path.empty() && node) {
        const auto slash = path.find('/');
        node = child(node, path.substr(0, slash));
        path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash + 1);
    }
    return trimmed(node.text().get());
}

bool Request::parse(std::string_view text)
{
    if (!m_document.load_buffer(text.data(), text.size()))
        return false;
    const pugi::xml_node envelope = child(m_document, "Envelope");
    m_header = child(envelope, "Header");
    const pugi::xml_node body = child(envelope, "Body");
    m_operation = body.find_child(
        [](const pugi::xml_node &node) { return node.type() == pugi::node_element; });
    return static_cast<bool>(m_operation);
}

std::string Request::name() const
{
    return std::string(localName(m_operation));
}

std::string Request::service() const
{
    const std::string name = m_operation.name();
    const auto colon = name.find(':');
    const std::string declaration =
        colon == std::string::npos ? "xmlns" : "xmlns:" + name.substr(0, colon);
    for (pugi::xml_node node = m_operation; node; node = node.parent())
        if (const pugi::xml_attribute found = node.attribute(declaration.c_str()))
            return found.value();
    return {};
}

std::string Request::header(const char *name) const
{
    return textAt(m_header, name);
}

std::optional<UsernameToken> Request::token() const
{
    const pugi::xml_node node = child(child(m_header, "Security"), "UsernameToken");
    if (!node)
        return std::nullopt;
    return UsernameToken{textAt(node, "Username"), textAt(node, "Password"), textAt(node, "Nonce"),
                         textAt(node, "Created")};
}

Reply::Reply()
{
    pugi::xml_node declaration = m_document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    m_envelope = m_document.append_child("s:Envelope");
    static constexpr const char *namespaces[][2] = {
        {"xmlns:s", "http://www.w3.org/2003/05/soap-envelope"},
        {"xmlns:a", "http://schemas.xmlsoap.org/ws/2004/08/addressing"},
        {"xmlns:d", "http://schemas.xmlsoap.org/ws/2005/04/discovery"},
        {"xmlns:dn", "http://www.onvif.org/ver10/network/wsdl"},
        {"xmlns:tds", "http://www.onvif.org/ver10/device/wsdl"},
        {"xmlns:trt", "http://www.onvif.org/ver10/media/wsdl"},
        {"xmlns:tr2", "http://www.onvif.org/ver20/media/wsdl"},
        {"xmlns:tt", "http://www.onvif.org/ver10/schema"},
        {"xmlns:ter", "http://www.onvif.org/ver10/error"},
    };
    for (const auto &[prefix, uri] : namespaces)
        m_envelope.append_attribute(prefix) = uri;
    m_header = m_envelope.append_child("s:Header");
    m_body = m_envelope.append_child("s:Body");
}

std::string Reply::text() const
{
    std::ostringstream stream;
    m_document.save(stream, "", pugi::format_raw);
    return stream.str();
}

pugi::xml_node add(pugi::xml_node parent, const char *name)
{
    return parent.append_child(name);
}

pugi::xml_node add(pugi::xml_node parent, const char *name, const std::string &text)
{
    pugi::xml_node node = parent.append_child(name);
    node.text() = text.c_str();
    return node;
}

pugi::xml_node addNamed(pugi::xml_node parent, const char *element, const std::string &token)
{
    pugi::xml_node node = add(parent, element);
    node.append_attribute("token") = token.c_str();
    add(node, "tt:Name", token);
    add(node, "tt:UseCount", "2");
    return node;
}

std::string fault(const char *code, const char *subcode, const char *detailCode, const char *reason)
{
    Reply reply;
    const pugi::xml_node fault = add(reply.body(), "s:Fault");
    const pugi::xml_node codeNode = add(fault, "s:Code");
    add(codeNode, "s:Value", std::string("s:") + code);
    const pugi::xml_node first = add(codeNode, "s:Subcode");
    add(first, "s:Value", subcode);
    if (detailCode)
        add(add(first, "s:Subcode"), "s:Value", detailCode);
    add(add(fault, "s:Reason"), "s:Text", reason).append_attribute("xml:lang") = "en";
    return reply.text();
}

std::optional<std::time_t> parseTime(const std::string &text)
{
    GTimeZone *utc = g_time_zone_new_utc();
    GDateTime *time = g_date_time_new_from_iso8601(text.c_str(), utc);
    g_time_zone_unref(utc);
    if (!time)
        return std::nullopt;
    const gint64 seconds = g_date_time_to_unix(time);
    g_date_time_unref(time);
    return static_cast<std::time_t>(seconds);
}

} // namespace camsim::soap
