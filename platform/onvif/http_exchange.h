#pragma once

#include "platform/onvif/glib_ptr.h"
#include "platform/onvif/request.h"
#include "platform/onvif/soap_status.h"

#include <libsoup/soup.h>

#include <functional>
#include <memory>
#include <string>

namespace onvif {

/// What came back. status is 0 when nothing usable came: no connection, a broken answer, too late.
struct HttpAnswer
{
    unsigned status = 0;
    std::string body;
    bool isTooLarge = false;
    bool wasChallenged = false; ///< the credentials were requested and sent
};

/// One POST of a SOAP envelope.
struct HttpPost
{
    std::string address;
    std::string contentType;
    std::string body;
    Credentials credentials; ///< for HTTP authorization; with an empty user nothing is signed
    unsigned milliseconds = 5000;
};

/// Makes the session that posts are sent through, bound to a context: no proxy, no cookies, no
/// decompression.
GObjectPtr<SoupSession> newHttpSession(GMainContext *context);

/// Sends the post on the context given, the default of the calling thread; done is called there,
/// never inside this call.
[[nodiscard]] RequestPtr postHttp(GMainContext *context, SoupSession *session, HttpPost post,
                                  std::function<void(HttpAnswer)> done);

} // namespace onvif
