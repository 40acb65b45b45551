#include "platform/rtsp/control_url.h"

#include "platform/base/text.h"

#include <glib.h>

#include <algorithm>
#include <string_view>

namespace rtsp {
namespace {

/// An address in its parts: "rtsp://host:port", "/path", "?query".
struct UrlParts
{
    std::string origin;
    std::string path;
    std::string query;
};

bool isAbsolute(std::string_view text)
{
    const size_t colon = text.find("://");
    return colon != std::string_view::npos && colon > 0 &&
           std::all_of(text.begin(), text.begin() + static_cast<ptrdiff_t>(colon),
                       [](char c) { return g_ascii_isalnum(c); });
}

UrlParts split(const std::string &url)
{
    UrlParts parts;
    const size_t scheme = url.find("://");
    const size_t authority = scheme == std::string::npos ? 0 : scheme + 3;
    const size_t path = std::min(url.find_first_of("/?", authority), url.size());
    const size_t query = std::min(url.find('?', path), url.size());
    parts.origin = url.substr(0, path);
    parts.path = url.substr(path, query - path);
    parts.query = url.substr(query);
    return parts;
}

std::string joined(const std::string &left, const std::string &right)
{
    if (left.ends_with('/') && right.starts_with('/'))
        return left + right.substr(1);
    return left.ends_with('/') || right.starts_with('/') || right.starts_with('?')
               ? left + right
               : left + '/' + right;
}

void addNew(std::vector<std::string> &urls, const std::string &url)
{
    if (!url.empty() && std::find(urls.begin(), urls.end(), url) == urls.end())
        urls.push_back(url);
}

/// The query of some servers' Content-Base ends in the slash that belongs to the path.
std::string withoutSlash(const std::string &text)
{
    return text.ends_with('/') ? text.substr(0, text.size() - 1) : text;
}

bool isWhole(const std::string &control)
{
    return control.empty() || control == "*";
}

/// The bases, the likeliest first.
std::vector<std::string> basesOf(const ControlBase &base)
{
    std::vector<std::string> bases;
    const std::string content = resolveUrl(base.requestUrl, base.contentBase);
    const std::string &first = content.empty() ? base.requestUrl : content;
    if (isAbsolute(base.sessionControl))
        addNew(bases, base.sessionControl);
    addNew(bases, first);
    addNew(bases, base.requestUrl);
    return bases;
}

} // namespace

std::string resolveUrl(const std::string &url, const std::string &reference)
{
    const std::string text(base::trimmed(reference));
    if (text.empty() || isAbsolute(text))
        return text;
    const UrlParts parts = split(url);
    if (text.front() == '/')
        return parts.origin + text;
    if (text.front() == '?')
        return parts.origin + parts.path + text;
    return joined(parts.origin, parts.path.substr(0, parts.path.rfind('/') + 1)) + text;
}

std::vector<std::string> controlUrls(const ControlBase &base, const std::string &control)
{
    if (isAbsolute(control))
        return {control};
    std::vector<std::string> urls;
    for (const std::string &each : basesOf(base)) {
        if (isWhole(control)) {
            addNew(urls, each);
            continue;
        }
        addNew(urls, joined(each, control));
        const UrlParts parts = split(each);
        if (!parts.query.empty())
            addNew(urls, parts.origin + joined(parts.path, control) + withoutSlash(parts.query));
        addNew(urls, resolveUrl(each, control));
    }
    if (urls.empty())
        urls.push_back(control);
    return urls;
}

std::vector<std::string> aggregateUrls(const ControlBase &base)
{
    if (isAbsolute(base.sessionControl) || isWhole(base.sessionControl)) {
        const std::vector<std::string> urls = basesOf(base);
        return urls.empty() ? std::vector{base.requestUrl} : urls;
    }
    std::vector<std::string> urls = controlUrls(base, base.sessionControl);
    for (const std::string &each : basesOf(base))
        addNew(urls, each);
    return urls;
}

} // namespace rtsp
