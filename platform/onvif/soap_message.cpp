#include "platform/onvif/soap_message.h"

#include "platform/onvif/glib_ptr.h"
#include "platform/onvif/text.h"
#include "platform/onvif/xml_message.h"

#include <glib.h>

#include <array>
#include <random>

namespace onvif {

namespace {

constexpr std::string_view envelopeStart =
    R"(<?xml version="1.0" encoding="UTF-8"?>)"
    R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
    R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
    R"( xmlns:trt="http://www.onvif.org/ver10/media/wsdl")"
    R"( xmlns:tt="http://www.onvif.org/ver10/schema">)";
constexpr std::string_view bodyStart = "<s:Body>";
constexpr std::string_view envelopeEnd = "</s:Body></s:Envelope>";
constexpr std::size_t maxFaultText = 200;

std::string base64(const unsigned char *bytes, std::size_t length)
{
    return GTextPtr(g_base64_encode(bytes, length)).get();
}

// Base64(SHA-1(nonce + created + password)), UsernameToken Profile 1.0, 3.1.
std::string passwordDigest(const TokenStamp &stamp, const std::string &password)
{
    const std::string text = stamp.nonce + stamp.created + password;
    GChecksum *checksum = g_checksum_new(G_CHECKSUM_SHA1);
    g_checksum_update(checksum, reinterpret_cast<const guchar *>(text.data()),
                      static_cast<gssize>(text.size()));
    std::array<guint8, 20> digest = {};
    gsize length = digest.size();
    g_checksum_get_digest(checksum, digest.data(), &length);
    g_checksum_free(checksum);
    return base64(digest.data(), length);
}

std::string securityHeader(const Credentials &credentials, const TokenStamp &stamp)
{
    const std::string nonce =
        base64(reinterpret_cast<const unsigned char *>(stamp.nonce.data()), stamp.nonce.size());
    return R"(<s:Header><wsse:Security s:mustUnderstand="1")"
           R"( xmlns:wsse="http://docs.oasis-open.org/wss/2004/01/)"
           R"(oasis-200401-wss-wssecurity-secext-1.0.xsd")"
           R"( xmlns:wsu="http://docs.oasis-open.org/wss/2004/01/)"
           R"(oasis-200401-wss-wssecurity-utility-1.0.xsd">)"
           R"(<wsse:UsernameToken><wsse:Username>)" +
           xmlEscape(credentials.user) +
           R"(</wsse:Username><wsse:Password Type="http://docs.oasis-open.org/wss/2004/01/)"
           R"(oasis-200401-wss-username-token-profile-1.0#PasswordDigest">)" +
           passwordDigest(stamp, credentials.password) +
           R"(</wsse:Password><wsse:Nonce EncodingType="http://docs.oasis-open.org/wss/2004/01/)"
           R"(oasis-200401-wss-soap-message-security-1.0#Base64Binary">)" +
           nonce + "</wsse:Nonce><wsu:Created>" + stamp.created +
           "</wsu:Created></wsse:UsernameToken></wsse:Security></s:Header>";
}

bool saysRefused(std::string_view text)
{
    const std::string lower = lowerAscii(text);
    for (const char *word : {"notauthorized", "not authorized", "failedauthentication",
                             "failedcheck", "invalidsecurity", "unauthorized"})
        if (lower.find(word) != std::string::npos)
            return true;
    return false;
}

} // namespace

TokenStamp TokenStamp::now(std::int64_t clockOffset)
{
    TokenStamp stamp;
    std::random_device random;
    for (int i = 0; i < 16; ++i)
        stamp.nonce += static_cast<char>(random() & 0xFF);
    const gint64 seconds = g_get_real_time() / G_USEC_PER_SEC + clockOffset;
    GDateTime *moment = g_date_time_new_from_unix_utc(seconds);
    if (!moment)
        moment = g_date_time_new_now_utc();
    stamp.created = GTextPtr(g_date_time_format(moment, "%Y-%m-%dT%H:%M:%SZ")).get();
    g_date_time_unref(moment);
    return stamp;
}

std::string buildEnvelope(std::string_view body)
{
    std::string text(envelopeStart);
    text += bodyStart;
    text += body;
    text += envelopeEnd;
    return text;
}

std::string buildSignedEnvelope(std::string_view body, const Credentials &credentials,
                                const TokenStamp &stamp)
{
    std::string text(envelopeStart);
    text += securityHeader(credentials, stamp);
    text += bodyStart;
    text += body;
    text += envelopeEnd;
    return text;
}

std::optional<SoapFault> faultIn(const XmlMessage &message)
{
    const pugi::xml_node fault = child(message.body(), "Fault");
    if (!fault)
        return std::nullopt;
    // SOAP 1.2 names; the second of each pair is SOAP 1.1, which some devices answer with.
    SoapFault found;
    std::string codes(textOf(child(fault, "faultcode")));
    pugi::xml_node code = child(fault, "Code");
    while (code) {
        codes += ' ' + std::string(textOf(child(code, "Value")));
        code = child(code, "Subcode");
    }
    std::string_view reason = textOf(child(fault, {"Reason", "Text"}));
    if (reason.empty())
        reason = textOf(child(fault, "faultstring"));
    found.isRefusal = saysRefused(codes) || saysRefused(reason);
    found.text = cleanText(codes + ": " + std::string(reason), maxFaultText);
    return found;
}

std::optional<std::int64_t> parseSystemTime(const XmlMessage &message)
{
    const pugi::xml_node utc =
        child(message.body(), {"GetSystemDateAndTimeResponse", "SystemDateAndTime", "UTCDateTime"});
    const pugi::xml_node date = child(utc, "Date");
    const pugi::xml_node time = child(utc, "Time");
    // GLib checks the ranges of all fields.
    GDateTime *moment = g_date_time_new_utc(
        numberOf(child(date, "Year"), -1), numberOf(child(date, "Month"), -1),
        numberOf(child(date, "Day"), -1), numberOf(child(time, "Hour"), -1),
        numberOf(child(time, "Minute"), -1), numberOf(child(time, "Second"), -1));
    if (!moment)
        return std::nullopt;
    const std::int64_t seconds = g_date_time_to_unix(moment);
    g_date_time_unref(moment);
    return seconds;
}

} // namespace onvif
