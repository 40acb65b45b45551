#pragma once

#include "platform/base/credentials.h"
#include "platform/onvif/soap_status.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace onvif {

class XmlMessage;

/// The question for a device's clock, which every device answers without a login (ONVIF Core
/// 8.3.4).
inline constexpr const char *clockAction =
    "http://www.onvif.org/ver10/device/wsdl/GetSystemDateAndTime";
inline constexpr const char *clockBody = "<tds:GetSystemDateAndTime/>";

/// What makes a UsernameToken differ from the next one (WS-Security UsernameToken Profile 1.0).
struct TokenStamp
{
    std::string nonce;   ///< 16 random bytes
    std::string created; ///< UTC by the device's clock, "2024-03-01T12:00:00Z"

    /// For this moment; clockOffset is how far the device's clock is ahead, in seconds.
    static TokenStamp now(std::int64_t clockOffset);
};

/// A SOAP 1.2 envelope around the text of a body. The body may use the prefixes tds (device
/// service), trt (media service) and tt (ONVIF types).
std::string buildEnvelope(std::string_view body);

/// The same with a WS-Security header that proves the password by its digest.
std::string buildSignedEnvelope(std::string_view body, const base::Credentials &credentials,
                                const TokenStamp &stamp);

/// The text of a fault, for the log; nullopt when the message is no fault.
struct SoapFault
{
    bool isRefusal = false; ///< ter:NotAuthorized, wsse:FailedAuthentication and the like
    std::string text;
};
std::optional<SoapFault> faultIn(const XmlMessage &message);

/// The time in a GetSystemDateAndTimeResponse, in seconds since 1970: by its UTC time, else by its
/// local time and the offset of its zone. nullopt when it has neither.
std::optional<std::int64_t> parseSystemTime(const XmlMessage &message);

} // namespace onvif
