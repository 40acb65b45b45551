#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace rtsp {

/// Names and values in the order of the message, blanks around them trimmed.
using Headers = std::vector<std::pair<std::string, std::string>>;

/// One answer of a camera, RTSP or HTTP.
struct Reply
{
    int status = 0;
    Headers headers;
    std::string body;
    bool keepsConnection = false;

    /// The values of all headers of that name, whatever its case.
    std::vector<std::string> all(std::string_view name) const;
    /// The first one, or the empty text.
    std::string first(std::string_view name) const;
};

/// A request that a camera sends to its client (RFC 2326 10).
struct ServerRequest
{
    std::string method;
    Headers headers;

    std::string first(std::string_view name) const;
};

/// The end of the blank line behind the headers of a message, npos while it has not come; some
/// cameras end lines with a bare line feed.
size_t findHeadEnd(std::string_view data);

/// Reads status line and headers (RFC 2326 7.1, RFC 9112 4); nullopt for anything else.
std::optional<Reply> parseReplyHead(std::string_view head);

/// Reads request line and headers (RFC 2326 6.1); nullopt for anything else.
std::optional<ServerRequest> parseRequestHead(std::string_view head);

/// A number of at most 15 digits of that base (10 or 16); nullopt for anything else.
std::optional<size_t> parseSize(std::string_view text, unsigned base);

} // namespace rtsp
