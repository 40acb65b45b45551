#include "platform/onvif/scopes.h"

#include "platform/base/text.h"

#include <glib.h>

namespace onvif {

namespace {

constexpr std::string_view scopeRoot = "onvif://www.onvif.org/";

struct Scope
{
    std::string kind; ///< lower case
    std::string text;
};

std::optional<Scope> parseScope(std::string_view scope)
{
    if (scope.size() <= scopeRoot.size() ||
        base::lowerAscii(scope.substr(0, scopeRoot.size())) != scopeRoot)
        return std::nullopt;
    scope.remove_prefix(scopeRoot.size());
    const std::size_t slash = scope.find('/');
    Scope parsed;
    parsed.kind = base::lowerAscii(scope.substr(0, slash));
    if (slash != std::string_view::npos)
        parsed.text = base::cleanText(base::percentDecode(scope.substr(slash + 1)), maxScopeText);
    return parsed;
}

} // namespace

ScopeTexts textsFromScopes(const std::vector<std::string> &scopes)
{
    ScopeTexts texts;
    for (const std::string &text : scopes) {
        const std::optional<Scope> scope = parseScope(text);
        if (!scope || scope->text.empty())
            continue;
        if (scope->kind == "name" && texts.name.empty())
            texts.name = scope->text;
        else if (scope->kind == "hardware" && texts.model.empty())
            texts.model = scope->text;
        else if (scope->kind == "location")
            texts.location += (texts.location.empty() ? "" : ", ") + scope->text;
        else if ((scope->kind == "mac" || scope->kind == "macaddress") && !texts.mac)
            texts.mac = parseMac(scope->text);
    }
    texts.location = base::cutUtf8(texts.location, maxScopeText);
    return texts;
}

std::string scopeFor(std::string_view kind, std::string_view text)
{
    const std::string start = std::string(scopeRoot) + std::string(kind) + '/';
    if (kind != "location")
        return start + base::percentEncode(text);
    // Locations may be paths (ONVIF Core 7.3.2.2).
    std::string path;
    for (std::size_t slash = text.find('/'); slash != std::string_view::npos;
         slash = text.find('/')) {
        path += base::percentEncode(text.substr(0, slash)) + '/';
        text.remove_prefix(slash + 1);
    }
    return start + path + base::percentEncode(text);
}

bool isScopeOf(std::string_view scope, std::string_view kind)
{
    const std::optional<Scope> parsed = parseScope(scope);
    return parsed && parsed->kind == kind;
}

std::optional<MacAddress> parseMac(std::string_view text)
{
    text = base::trimmed(text);
    const bool hasSeparators = text.size() == 17;
    if (!hasSeparators && text.size() != 12)
        return std::nullopt;
    MacAddress mac = {};
    std::size_t position = 0;
    for (std::size_t i = 0; i < mac.size(); ++i) {
        if (hasSeparators && i > 0 && text[position] != ':' && text[position] != '-')
            return std::nullopt;
        position += hasSeparators && i > 0 ? 1 : 0;
        const int high = g_ascii_xdigit_value(text[position]);
        const int low = g_ascii_xdigit_value(text[position + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        mac[i] = static_cast<std::uint8_t>(high * 16 + low);
        position += 2;
    }
    if (mac == MacAddress{} || (mac[0] & 1) != 0)
        return std::nullopt;
    return mac;
}

} // namespace onvif
