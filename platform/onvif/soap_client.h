#pragma once

#include "platform/onvif/request.h"
#include "platform/onvif/soap_status.h"
#include "platform/onvif/xml_message.h"

#include <glib.h>

#include <functional>
#include <memory>
#include <string>

namespace onvif {

/// How a request ended. message is set with SoapStatus::Ok only; text describes a failure, for the
/// log.
struct SoapReply
{
    SoapStatus status = SoapStatus::NoAnswer;
    std::shared_ptr<const XmlMessage> message;
    std::string text;
};

/// Talks SOAP over HTTP with one device on behalf of one user.
///
/// The credentials go out by HTTP digest (or basic, when the device knows nothing else). A device
/// that refuses without asking for either gets a UsernameToken, dated by its own clock; never both
/// in one message. The way that worked is kept. Certificates are not checked: cameras make their
/// own. Answers are limited to XmlMessage::maxBytes; redirections are not followed.
///
/// Belongs to the thread that runs the context as its default.
class SoapClient
{
public:
    using Done = std::function<void(SoapReply)>;

    /// deviceService: address of the device service, which also reports the device's clock.
    SoapClient(GMainContext *context, std::string deviceService, Credentials credentials);
    ~SoapClient();
    SoapClient(const SoapClient &) = delete;
    SoapClient &operator=(const SoapClient &) = delete;

    [[nodiscard]] const std::string &deviceService() const;

    /// How long one exchange with the device may take, in milliseconds; 5000 unless set.
    void setTimeout(unsigned milliseconds);

    /// Sends a body (see buildEnvelope) to a service of the device.
    [[nodiscard]] RequestPtr call(const std::string &service, const std::string &action,
                                  const std::string &body, Done done);

private:
    class Call;
    struct Session;
    std::shared_ptr<Session> m_session;
};

} // namespace onvif
