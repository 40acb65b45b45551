#pragma once

#include <pugixml.hpp>

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace camsim::soap {

/// A login inside a SOAP header (WS-Security UsernameToken profile, digest).
struct UsernameToken
{
    std::string user;
    std::string digest; ///< base64
    std::string nonce;  ///< base64
    std::string created;

    /// Whether it was made with the password, within maxSkew seconds of the clock.
    bool proves(const std::string &password, std::time_t clock, int maxSkew) const;
};

/// One SOAP 1.2 request. Elements are recognised by their local names alone.
class Request
{
public:
    /// False when the text is no SOAP envelope with one operation.
    bool parse(std::string_view text);

    std::string name() const; ///< local name of the operation
    /// The namespace of the operation, which names the service; empty when it has none.
    std::string service() const;
    pugi::xml_node operation() const { return m_operation; }
    std::optional<UsernameToken> token() const;
    /// Text of a header block by its local name, for instance "MessageID".
    std::string header(const char *name) const;

private:
    pugi::xml_document m_document;
    pugi::xml_node m_header;
    pugi::xml_node m_operation;
};

/// "tt:Name" and "Name" are both "Name".
std::string_view localName(const pugi::xml_node &node);
/// First child with this local name; a null node when there is none.
pugi::xml_node child(const pugi::xml_node &node, std::string_view name);
/// Text at a path of local names ("Manual/Address"), without blanks around it; empty when missing.
std::string textAt(pugi::xml_node node, std::string_view path);

/// An answer: an envelope whose body is filled by the caller.
class Reply
{
public:
    Reply();
    pugi::xml_node header() { return m_header; }
    pugi::xml_node body() { return m_body; }
    std::string text() const;

private:
    pugi::xml_document m_document;
    pugi::xml_node m_envelope;
    pugi::xml_node m_header;
    pugi::xml_node m_body;
};

pugi::xml_node add(pugi::xml_node parent, const char *name);
pugi::xml_node add(pugi::xml_node parent, const char *name, const std::string &text);
/// A configuration of the media services: an element with a token, named by it.
pugi::xml_node addNamed(pugi::xml_node parent, const char *element, const std::string &token);
/// A fault with the code's first part ("Sender", "Receiver") and ONVIF subcodes ("ter:...").
std::string fault(const char *code, const char *subcode, const char *detailCode,
                  const char *reason);

/// "2018-08-13T10:20:30Z" to seconds since 1970; nullopt when it is no time.
std::optional<std::time_t> parseTime(const std::string &text);

} // namespace camsim::soap
