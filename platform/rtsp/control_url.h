#pragma once

#include <string>
#include <vector>

namespace rtsp {

/// What the addresses of a description's media are relative to.
struct ControlBase
{
    std::string requestUrl;     ///< of the DESCRIBE that was answered
    std::string contentBase;    ///< the answer's Content-Base, else Content-Location; may be empty
    std::string sessionControl; ///< a=control of the whole description; may be empty
};

/**
 * The addresses that a control attribute (RFC 2326 C.1.1) may stand for, the likeliest first, none
 * twice, at least one. Servers disagree on how a relative one is joined to a base with a query, or
 * without a slash at its end: most want the text appended, others what RFC 3986 5.2 says, others
 * the query moved behind it.
 */
std::vector<std::string> controlUrls(const ControlBase &base, const std::string &control);

/// The same for the presentation as a whole: what PLAY, keep-alives and TEARDOWN name.
std::vector<std::string> aggregateUrls(const ControlBase &base);

/// The address that a Location or Content-Base header names, seen from url; empty for none.
std::string resolveUrl(const std::string &url, const std::string &reference);

} // namespace rtsp
