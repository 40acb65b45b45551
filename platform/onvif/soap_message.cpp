#include "platform/onvif/soap_message.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/text.h"
#include "platform/onvif/xml_message.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <random>

namespace onvif {

namespace {

constexpr std::string_view envelopeStart =
    R"(<?xml version="1.0" encoding="UTF-8"?>)"
    R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
    R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
    R"( xmlns:trt="http://www.onvif.org/ver10/media/wsdl")"
    R"( xmlns:tr2="http://www.onvif.org/ver20/media/wsdl")"
    R"( xmlns:tt="http://www.onvif.org/ver10/schema">)";
constexpr std::string_view bodyStart = "<s:Body>";
constexpr std::string_view envelopeEnd = "</s:Body></s:Envelope>";
constexpr std::size_t maxFaultText = 200;

std::string base64(const unsigned char *bytes, std::size_t length)
{
    return base::GTextPtr(g_base64_encode(bytes, length)).get();
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

std::string securityHeader(const base::Credentials &credentials, const TokenStamp &stamp)
{
    const std::string nonce =
        base64(reinterpret_cast<const unsigned char *>(stamp.nonce.data()), stamp.nonce.size());
    return R"(<s:Header><wsse:Security s:mustUnderstand="1")"
           R"( xmlns:wsse="http://docs.oasis-open.org/wss/2004/01/)"
           R"(oasis-200401-wss-wssecurity-secext-1.0.xsd")"
           R"( xmlns:wsu="http://docs.oasis-open.org/wss/2004/01/)"
           R"(oasis-200401-wss-wssecurity-utility-1.0.xsd">)"
           R"(<wsse:UsernameToken><wsse:Username>)" +
           base::xmlEscape(credentials.user) +
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
    const std::string lower = base::lowerAscii(text);
    for (const char *word :
         {"notauthorized", "not authorized", "failedauthentication", "failedcheck",
          "invalidsecurity", "unauthorized", "authentication failed", "authentication failure",
          "authority failure", "login failed", "access denied", "messageexpired"})
        if (lower.find(word) != std::string::npos)
            return true;
    return false;
}

// A tt:DateTime, taken for UTC, in seconds since 1970. GLib checks the ranges of all fields.
std::optional<std::int64_t> momentIn(pugi::xml_node dateTime)
{
    const pugi::xml_node date = child(dateTime, "Date");
    const pugi::xml_node time = child(dateTime, "Time");
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

// How many seconds a zone is behind UTC by the offset of a POSIX TZ text (IEEE 1003.1, 8.3) such as
// "CST-8" or "<+0330>-3:30"; what follows the offset, the rules of summer time, is not read. The
// text is never handed to the system, which would open a file of that name.
std::optional<std::int64_t> secondsWest(std::string_view zone, bool isSummer)
{
    const std::size_t end = zone.starts_with('<') ? zone.find('>') : std::string_view::npos;
    zone.remove_prefix(end == std::string_view::npos ? 0 : end + 1);
    zone.remove_prefix(std::min(zone.find_first_of("+-0123456789"), zone.size()));
    const bool isNegative = zone.starts_with('-');
    zone.remove_prefix(isNegative || zone.starts_with('+') ? 1 : 0);
    std::int64_t seconds = 0;
    for (std::int64_t unit = 3600; unit > 0; unit /= 60) {
        unsigned value = 0;
        const auto [next, error] = std::from_chars(zone.data(), zone.data() + zone.size(), value);
        const unsigned limit = unit == 3600 ? 24 : 59;
        if (error != std::errc() || value > limit)
            return std::nullopt;
        seconds += unit * value;
        zone.remove_prefix(static_cast<std::size_t>(next - zone.data()));
        if (!zone.starts_with(':'))
            break;
        zone.remove_prefix(1);
    }
    constexpr std::int64_t summerTime = 3600;
    return (isNegative ? -seconds : seconds) - (isSummer ? summerTime : 0);
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
    stamp.created = base::GTextPtr(g_date_time_format(moment, "%Y-%m-%dT%H:%M:%SZ")).get();
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

std::string buildSignedEnvelope(std::string_view body, const base::Credentials &credentials,
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
    found.text = base::cleanText(codes + ": " + std::string(reason), maxFaultText);
    return found;
}

std::optional<std::int64_t> parseSystemTime(const XmlMessage &message)
{
    const pugi::xml_node system =
        child(message.body(), {"GetSystemDateAndTimeResponse", "SystemDateAndTime"});
    if (const auto utc = momentIn(child(system, "UTCDateTime")))
        return utc;
    const auto local = momentIn(child(system, "LocalDateTime"));
    const auto west = secondsWest(textOf(child(system, {"TimeZone", "TZ"})),
                                  isTrue(child(system, "DaylightSavings")));
    return local && west ? std::optional(*local + *west) : std::nullopt;
}

} // namespace onvif
