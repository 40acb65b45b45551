#pragma once

#include "platform/base/glib_ptr.h"
#include "platform/onvif/request.h"
#include "platform/onvif/xml_message.h"

#include <libsoup/soup.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace onvif {

/// What came back. status is 0 when nothing usable came: no connection, a broken answer, too late.
struct HttpAnswer
{
    unsigned status = 0;
    std::string body;
    bool isTooLarge = false;
    std::vector<std::string> challenges; ///< WWW-Authenticate headers
    std::optional<std::int64_t> date;    ///< header of that name, in seconds since 1970
};

/// One request of a device: a SOAP envelope that is posted, or a file that is got.
struct HttpRequest
{
    bool isGet = false; ///< without body and content type
    std::string address;
    std::string contentType;
    std::string body;
    std::string authorization;                   ///< header of that name; empty: none
    unsigned milliseconds = 0;                   ///< how long the exchange may take
    std::size_t maxBytes = XmlMessage::maxBytes; ///< of the answer
    /// Whether it may go out over a connection that was used before, and once more over a new one
    /// when the device has closed that without a word.
    bool mayReuseConnection = false;
};

/// Makes the session that requests are sent through, bound to a context: no proxy, no cookies, no
/// logins by itself, no decompression.
base::GObjectPtr<SoupSession> newHttpSession(GMainContext *context);

/// Sends the request on the context given, the default of the calling thread; done is called there,
/// never inside this call.
[[nodiscard]] RequestPtr sendHttp(GMainContext *context, SoupSession *session, HttpRequest request,
                                  std::function<void(HttpAnswer)> done);

} // namespace onvif
