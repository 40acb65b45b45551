#pragma once

#include "platform/base/credentials.h"
#include "platform/base/http_login.h"
#include "platform/onvif/http_exchange.h"
#include "platform/onvif/request.h"
#include "platform/onvif/soap_client.h"

#include <cstddef>
#include <functional>
#include <string>

namespace onvif {

/// How the picture of a device was got.
enum class PictureStatus
{
    Ok,
    Refused, ///< the device did not accept the login, or none may be sent
    Failed   ///< no answer, or none that is a JPEG
};

/// Largest picture that is taken, bytes.
inline constexpr std::size_t maxPictureBytes = 16 * 1024 * 1024;

/// Gets a JPEG file of a device by HTTP. The login is sent at most once: as a digest where one is
/// offered; in clear only over TLS, or where ClearPassword allows it and the device has never
/// offered anything better; and not at all once the limit is reached. Thread and cancelling as for
/// SoapClient.
class PictureRequest : public Request
{
public:
    using Done = std::function<void(PictureStatus, std::string)>;

    PictureRequest(GMainContext *context, std::string address, base::Credentials credentials,
                   ClearPassword clear, std::shared_ptr<base::LoginLimit> limit, Done done);

private:
    void get(const std::string &authorization);
    void answered(const HttpAnswer &answer, bool wasSigned);
    [[nodiscard]] std::string answerTo(const HttpAnswer &answer) const;

    base::GMainContextPtr m_context;
    base::GObjectPtr<SoupSession> m_session;
    const std::string m_address;
    const base::Credentials m_credentials;
    const ClearPassword m_clear;
    const std::shared_ptr<base::LoginLimit> m_limit; ///< may be null
    Done m_done;
    RequestPtr m_exchange;
};

} // namespace onvif
