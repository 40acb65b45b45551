#include "tests/platform/onvif/support/soap_device.h"

#include "platform/onvif/net_address.h"

#include <gtest/gtest.h>

#include <pugixml.hpp>

#include <array>
#include <cstdlib>
#include <utility>

namespace {

// How far from the device's clock a token may be dated.
constexpr std::int64_t maxSkew = 60;

std::string faultText(const std::string &subcode)
{
    return SoapDevice::envelope("<s:Fault><s:Code><s:Value>s:Sender</s:Value><s:Subcode><s:Value>" +
                                subcode +
                                "</s:Value></s:Subcode></s:Code><s:Reason>"
                                "<s:Text xml:lang=\"en\">The request failed</s:Text>"
                                "</s:Reason></s:Fault>");
}

std::string text(const pugi::xml_document &document, const char *localName)
{
    const std::string query = std::string("//*[local-name()='") + localName + "']";
    return document.select_node(query.c_str()).node().child_value();
}

std::string requestName(const std::string &envelope)
{
    pugi::xml_document document;
    document.load_buffer(envelope.data(), envelope.size());
    const std::string name =
        document.select_node("/*[local-name()='Envelope']/*[local-name()='Body']/*").node().name();
    return name.substr(name.find(':') + 1);
}

std::string header(SoupMessageHeaders *headers, const char *name)
{
    const char *value = soup_message_headers_get_one(headers, name);
    return value ? value : "";
}

std::string decoded(const std::string &base64)
{
    gsize length = 0;
    guchar *bytes = g_base64_decode(base64.c_str(), &length);
    std::string result(reinterpret_cast<const char *>(bytes), length);
    g_free(bytes);
    return result;
}

} // namespace

SoapDevice::SoapDevice(const TestContext &context, std::string host)
    : m_server(soup_server_new("server-header", "device", nullptr))
    , m_host(std::move(host))
{
    EXPECT_TRUE(base::isThreadDefault(context.get()));
    soup_server_add_handler(m_server.get(), nullptr, handle, this, nullptr);
    const base::GObjectPtr<GSocketAddress> address(
        g_inet_socket_address_new_from_string(m_host.c_str(), 0));
    EXPECT_TRUE(
        soup_server_listen(m_server.get(), address.get(), SoupServerListenOptions(0), nullptr));
    GSList *uris = soup_server_get_uris(m_server.get());
    m_port = uris ? g_uri_get_port(static_cast<GUri *>(uris->data)) : 0;
    g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
}

SoapDevice::~SoapDevice()
{
    soup_server_disconnect(m_server.get());
}

std::string SoapDevice::service() const
{
    onvif::HttpAddress address;
    address.host = m_host;
    address.port = m_port;
    address.path = "/onvif/device_service";
    return address.text();
}

void SoapDevice::guard(Guard guard, const std::string &user, const std::string &password)
{
    m_guard = guard;
    m_user = user;
    m_password = password;
    base::GObjectPtr<SoupAuthDomain> domain;
    if (guard == Guard::Digest) {
        domain.reset(soup_auth_domain_digest_new("realm", "device", nullptr));
        soup_auth_domain_digest_set_auth_callback(domain.get(), digestPassword, this, nullptr);
    } else if (guard == Guard::Basic) {
        domain.reset(soup_auth_domain_basic_new("realm", "device", nullptr));
        soup_auth_domain_basic_set_auth_callback(domain.get(), basicPassword, this, nullptr);
    }
    if (domain) {
        soup_auth_domain_add_path(domain.get(), "/");
        soup_server_add_auth_domain(m_server.get(), domain.get());
    }
}

void SoapDevice::answer(const std::string &request, const std::string &body)
{
    m_replies[request] = {200, envelope(body), false};
}

void SoapDevice::answerRaw(const std::string &request, int status, const std::string &text)
{
    m_replies[request] = {status, text, false};
}

void SoapDevice::answerFault(const std::string &request, const std::string &subcode)
{
    m_replies[request] = {400, faultText(subcode), false};
}

void SoapDevice::keepSilent(const std::string &request)
{
    m_replies[request] = {0, {}, true};
}

std::vector<std::string> SoapDevice::seen(const std::string &request) const
{
    std::vector<std::string> texts;
    for (const Seen &one : m_seen)
        if (one.request == request)
            texts.push_back(one.text);
    return texts;
}

std::string SoapDevice::envelope(const std::string &body)
{
    return R"(<?xml version="1.0" encoding="UTF-8"?>)"
           R"(<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope")"
           R"( xmlns:tds="http://www.onvif.org/ver10/device/wsdl")"
           R"( xmlns:trt="http://www.onvif.org/ver10/media/wsdl")"
           R"( xmlns:ter="http://www.onvif.org/ver10/error")"
           R"( xmlns:tt="http://www.onvif.org/ver10/schema"><s:Body>)" +
           body + "</s:Body></s:Envelope>";
}

void SoapDevice::handle(SoupServer *, SoupServerMessage *message, const char *, GHashTable *,
                        gpointer data)
{
    auto *self = static_cast<SoapDevice *>(data);
    SoupMessageBody *body = soup_server_message_get_request_body(message);
    GBytes *bytes = soup_message_body_flatten(body);
    gsize length = 0;
    const auto *text = static_cast<const char *>(g_bytes_get_data(bytes, &length));
    SoupMessageHeaders *headers = soup_server_message_get_request_headers(message);
    Seen request;
    request.text.assign(text ? text : "", length);
    g_bytes_unref(bytes);
    request.request = requestName(request.text);
    request.authorization = header(headers, "Authorization");
    request.contentType = header(headers, "Content-Type");
    const Reply reply = self->replyTo(request);
    self->m_seen.push_back(std::move(request));
    if (reply.isSilent) {
        self->m_silenced.push_back(base::shareObject(message));
        soup_server_message_pause(message);
        return;
    }
    soup_server_message_set_status(message, static_cast<guint>(reply.status), nullptr);
    SoupMessageHeaders *answer = soup_server_message_get_response_headers(message);
    if (self->m_guard == Guard::DigestAndToken && reply.status == 401) {
        soup_message_headers_append(answer, "WWW-Authenticate",
                                    R"(Digest realm="device", nonce="1", qop="auth")");
    }
    if (self->m_clockOffset != 0) {
        const base::GTextPtr date(self->deviceTime("%a, %d %b %Y %H:%M:%S GMT", 0));
        soup_message_headers_replace(answer, "Date", date.get());
    }
    soup_server_message_set_response(message, "application/soap+xml", SOUP_MEMORY_COPY,
                                     reply.text.data(), reply.text.size());
}

SoapDevice::Reply SoapDevice::replyTo(const Seen &request) const
{
    if (m_guard == Guard::Unreasonable)
        return {401, {}, false};
    if (request.request == "GetSystemDateAndTime" && m_clock != Clock::Refused)
        return {200, clockAnswer(), false};
    const bool wantsToken =
        m_guard == Guard::Token || m_guard == Guard::DigestAndToken || m_guard == Guard::BareToken;
    if (wantsToken && !hasGoodToken(request.text)) {
        if (m_guard == Guard::DigestAndToken)
            return {401, {}, false};
        return {400, m_guard == Guard::BareToken ? std::string() : faultText("ter:NotAuthorized"),
                false};
    }
    const std::string media2 = "tr2:" + request.request;
    const bool isMedia2 =
        m_replies.contains(media2) && request.text.find('<' + media2) != std::string::npos;
    const auto found = m_replies.find(isMedia2 ? media2 : request.request);
    return found != m_replies.end() ? found->second
                                    : Reply{400, faultText("ter:ActionNotSupported"), false};
}

char *SoapDevice::digestPassword(SoupAuthDomain *domain, SoupServerMessage *, const char *user,
                                 gpointer data)
{
    const auto *self = static_cast<const SoapDevice *>(data);
    if (self->m_user != user)
        return nullptr;
    return soup_auth_domain_digest_encode_password(user, soup_auth_domain_get_realm(domain),
                                                   self->m_password.c_str());
}

gboolean SoapDevice::basicPassword(SoupAuthDomain *, SoupServerMessage *, const char *user,
                                   const char *password, gpointer data)
{
    const auto *self = static_cast<const SoapDevice *>(data);
    return self->m_user == user && self->m_password == password;
}

bool SoapDevice::hasGoodToken(const std::string &envelope) const
{
    pugi::xml_document document;
    document.load_buffer(envelope.data(), envelope.size());
    const std::string created = text(document, "Created");
    const std::string proof = decoded(text(document, "Nonce")) + created + m_password;
    GChecksum *checksum = g_checksum_new(G_CHECKSUM_SHA1);
    g_checksum_update(checksum, reinterpret_cast<const guchar *>(proof.data()),
                      static_cast<gssize>(proof.size()));
    std::array<guint8, 20> digest = {};
    gsize length = digest.size();
    g_checksum_get_digest(checksum, digest.data(), &length);
    g_checksum_free(checksum);
    const base::GTextPtr expected(g_base64_encode(digest.data(), length));

    GDateTime *moment = g_date_time_new_from_iso8601(created.c_str(), nullptr);
    if (!moment)
        return false;
    const std::int64_t deviceNow = g_get_real_time() / G_USEC_PER_SEC + m_clockOffset;
    const bool isFresh = std::abs(g_date_time_to_unix(moment) - deviceNow) <= maxSkew;
    g_date_time_unref(moment);
    return isFresh && text(document, "Username") == m_user &&
           text(document, "Password") == expected.get();
}

char *SoapDevice::deviceTime(const char *format, std::int64_t zone) const
{
    GDateTime *moment =
        g_date_time_new_from_unix_utc(g_get_real_time() / G_USEC_PER_SEC + m_clockOffset + zone);
    char *text = g_date_time_format(moment, format);
    g_date_time_unref(moment);
    return text;
}

std::string SoapDevice::clockAnswer() const
{
    const bool isLocal = m_clock == Clock::LocalOnly;
    const std::int64_t zone = isLocal ? 8 * 3600 : m_clock == Clock::WrongUtc ? 5 * 3600 : 0;
    const base::GTextPtr fields(deviceTime(
        "<tt:Time><tt:Hour>%-H</tt:Hour><tt:Minute>%-M</tt:Minute><tt:Second>%-S</tt:Second>"
        "</tt:Time><tt:Date><tt:Year>%Y</tt:Year><tt:Month>%-m</tt:Month><tt:Day>%-d</tt:Day>"
        "</tt:Date>",
        zone));
    const std::string name = isLocal ? "tt:LocalDateTime>" : "tt:UTCDateTime>";
    return envelope("<tds:GetSystemDateAndTimeResponse><tds:SystemDateAndTime>"
                    "<tt:DateTimeType>NTP</tt:DateTimeType><tt:TimeZone><tt:TZ>CST-8</tt:TZ>"
                    "</tt:TimeZone><" +
                    name + fields.get() + "</" + name +
                    "</tds:SystemDateAndTime></tds:GetSystemDateAndTimeResponse>");
}
