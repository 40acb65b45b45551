#pragma once

#include "platform/base/credentials.h"
#include "platform/base/login_limit.h"
#include "platform/onvif/request.h"
#include "platform/onvif/soap_status.h"
#include "platform/onvif/xml_message.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <string>

namespace onvif {

/// How a request ended. message is set with SoapStatus::Ok only.
struct SoapReply
{
    SoapStatus status = SoapStatus::NoAnswer;
    std::shared_ptr<const XmlMessage> message;
};

/// Whether a password may go over the network in clear: HTTP basic without TLS.
enum class ClearPassword
{
    Never,
    /// To a device that has never offered anything better in this process and refused a token.
    /// For devices whose address the user typed; a multicast answer may come from any host.
    AsLastResort,
};

/// Whether a request changes the device, which sets its time limit.
enum class SoapKind
{
    Question,
    Change, ///< sent over a new connection, never sent twice
};

struct SoapOptions
{
    ClearPassword clearPassword = ClearPassword::Never;
    unsigned questionMilliseconds = 5000; ///< for one exchange with the device
    unsigned changeMilliseconds = 15'000; ///< the same, of a SoapKind::Change
    /// Of the device, with what else talks to it; null: the caller sees to that.
    std::shared_ptr<base::LoginLimit> limit = {};
};

/// Talks SOAP over HTTP with one device on behalf of one user.
///
/// The login is sent by HTTP digest (MD5 or SHA-256) where the device requests it. A device that
/// refuses otherwise, or takes no digest, gets a WS-Security UsernameToken, dated by its own clock;
/// never both in one message. HTTP basic comes last: over TLS, or where ClearPassword allows it.
/// The way that worked and the nonce are kept. Wrong credentials reach the device at most three
/// times a call, or not at all once SoapOptions::limit is reached; a login beyond ASCII is tried in
/// Latin-1 after UTF-8. Over TLS a device has to keep its key, see base::KnownKeys. Answers are
/// limited to XmlMessage::maxBytes; redirections are not followed.
///
/// Belongs to the thread that runs the context as its default.
class SoapClient
{
public:
    using Done = std::function<void(SoapReply)>;

    /// deviceService: address of the device service, which also reports the device's clock.
    SoapClient(GMainContext *context, std::string deviceService, base::Credentials credentials,
               SoapOptions options = {});
    ~SoapClient();
    SoapClient(const SoapClient &) = delete;
    SoapClient &operator=(const SoapClient &) = delete;

    [[nodiscard]] const std::string &deviceService() const;

    /// Sends a body (see buildEnvelope) to a service of the device.
    [[nodiscard]] RequestPtr call(const std::string &service, const std::string &action,
                                  const std::string &body, SoapKind kind, Done done);

private:
    class Call;
    struct Session;
    std::shared_ptr<Session> m_session;
};

} // namespace onvif
