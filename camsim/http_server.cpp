#include "camsim/http_server.h"

#include <array>
#include <random>
#include <string_view>

namespace camsim {

namespace {

constexpr const char *realm = "camsim";
constexpr const char *soapType = "application/soap+xml; charset=utf-8";
constexpr const char *snapshotPath = "/onvif/snapshot/";
// Names the port that a request came to.
constexpr const char *frontHeader = "X-Front";
constexpr int maxSkew = 10; ///< seconds that a UsernameToken may be away from the camera's clock

void respond(SoupServerMessage *message, guint status, const char *type, const std::string &text)
{
    soup_server_message_set_status(message, status, nullptr);
    soup_server_message_set_response(message, type, SOUP_MEMORY_COPY, text.data(), text.size());
}

/// Of the profile whose still picture is asked for: "…/profile_main.jpg".
std::string tokenOf(std::string_view path)
{
    path.remove_prefix(std::string_view(snapshotPath).size());
    return std::string(path.substr(0, path.rfind('.')));
}

std::string htmlEscaped(const std::string &text)
{
    gchar *escaped = g_markup_escape_text(text.c_str(), -1);
    std::string result(escaped);
    g_free(escaped);
    return result;
}

void closeConnection(SoupServerMessage *message)
{
    GIOStream *stream = soup_server_message_steal_connection(message);
    g_io_stream_close(stream, nullptr, nullptr);
    g_object_unref(stream);
}

void sendGarbage(SoupServerMessage *message)
{
    GIOStream *stream = soup_server_message_steal_connection(message);
    std::array<char, 300> bytes;
    std::minstd_rand random(7);
    for (char &byte : bytes)
        byte = static_cast<char>(random() >> 8);
    g_output_stream_write_all(g_io_stream_get_output_stream(stream), bytes.data(), bytes.size(),
                              nullptr, nullptr, nullptr);
    g_io_stream_close(stream, nullptr, nullptr);
    g_object_unref(stream);
}

} // namespace

HttpServer::HttpServer(CameraModel &camera, Account &account, const OnvifOptions &options)
    : m_camera(camera)
    , m_account(account)
    , m_options(options)
    , m_onvif(camera, options)
    , m_forms(camera)
    , m_server(soup_server_new("server-header", "camsim ", nullptr))
{
    const auto digestCallback = [](SoupAuthDomain *domain, SoupServerMessage *, const char *user,
                                   gpointer self) -> char * {
        const CameraModel &model = static_cast<HttpServer *>(self)->m_camera;
        if (model.user() != user)
            return nullptr;
        return soup_auth_domain_digest_encode_password(user, soup_auth_domain_get_realm(domain),
                                                       model.password().c_str());
    };
    const auto basicCallback = [](SoupAuthDomain *, SoupServerMessage *, const char *user,
                                  const char *password, gpointer self) -> gboolean {
        const CameraModel &model = static_cast<HttpServer *>(self)->m_camera;
        return model.user() == user && model.password() == password;
    };
    m_digest = soup_auth_domain_digest_new("realm", realm, nullptr);
    soup_auth_domain_digest_set_auth_callback(m_digest, digestCallback, this, nullptr);
    m_basic = soup_auth_domain_basic_new("realm", realm, nullptr);
    soup_auth_domain_basic_set_auth_callback(m_basic, basicCallback, this, nullptr);

    const auto handler = [](SoupServer *, SoupServerMessage *message, const char *path,
                            GHashTable *, gpointer data) {
        auto *self = static_cast<HttpServer *>(data);
        const bool isOnvif = g_str_has_prefix(path, "/onvif/");
        if (!self->isServedAt(message, isOnvif))
            respond(message, 404, "text/plain", "404 Not Found\n");
        else if (g_str_has_prefix(path, snapshotPath) && g_str_has_suffix(path, ".jpg"))
            self->onSnapshot(message, tokenOf(path));
        else if (isOnvif)
            self->onOnvif(message);
        else if (g_str_has_prefix(path, "/form/"))
            self->onForm(message, path);
        else
            self->onPage(message);
    };
    soup_server_add_handler(m_server, nullptr, handler, this, nullptr);

    GSocketAddress *address = g_inet_socket_address_new_from_string("127.0.0.1", 0);
    GError *error = nullptr;
    if (soup_server_listen(m_server, address, static_cast<SoupServerListenOptions>(0), &error)) {
        GSList *uris = soup_server_get_uris(m_server);
        m_port = g_uri_get_port(static_cast<GUri *>(uris->data));
        g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
    } else {
        g_warning("no HTTP server: %s", error->message);
        g_clear_error(&error);
    }
    g_object_unref(address);
}

HttpServer::~HttpServer()
{
    soup_server_disconnect(m_server);
    g_object_unref(m_server);
    g_object_unref(m_digest);
    g_object_unref(m_basic);
}

bool HttpServer::isProven(SoupServerMessage *message, SoupAuthDomain *domain) const
{
    char *user = soup_auth_domain_accepts(domain, message);
    const bool proven = user != nullptr && !m_account.isLocked();
    g_free(user);
    return proven;
}

bool HttpServer::isServedAt(SoupServerMessage *message, bool isOnvif) const
{
    const char *front =
        soup_message_headers_get_one(soup_server_message_get_request_headers(message), frontHeader);
    return !front || (g_str_equal(front, "onvif") != 0) == isOnvif;
}

bool HttpServer::isProven(SoupServerMessage *message) const
{
    const OnvifLogin login = m_options.login;
    const bool takesDigest = login == OnvifLogin::Both || login == OnvifLogin::HttpOnly;
    const bool takesBasic = takesDigest || login == OnvifLogin::BasicOnly;
    return (takesDigest && isProven(message, m_digest)) ||
           (takesBasic && isProven(message, m_basic));
}

void HttpServer::noteRefusal(SoupServerMessage *message, bool hadToken)
{
    SoupMessageHeaders *headers = soup_server_message_get_request_headers(message);
    if (m_account.isLocked())
        return; // also the right login is refused
    if (hadToken || soup_message_headers_get_one(headers, "Authorization"))
        m_account.noteWrong();
}

void HttpServer::refuse(SoupServerMessage *message)
{
    const OnvifLogin login = m_options.login;
    const bool isBare = login == OnvifLogin::BareToken;
    const bool isChallenge = login != OnvifLogin::TokenOnly && !isBare;
    respond(message, isChallenge ? 401 : 400, soapType,
            isBare ? std::string()
                   : soap::fault("Sender", "ter:NotAuthorized", nullptr, "Sender not authorized"));
    if (isChallenge && login != OnvifLogin::BasicOnly)
        soup_auth_domain_challenge(m_digest, message);
    if (login == OnvifLogin::Both || login == OnvifLogin::HttpOnly ||
        login == OnvifLogin::BasicOnly)
        soup_auth_domain_challenge(m_basic, message);
}

bool HttpServer::mayAsk(SoupServerMessage *message, const soap::Request &request) const
{
    if (m_onvif.isPublic(request.name()))
        return true;
    if (isProven(message))
        return true;
    const std::optional<soap::UsernameToken> token = request.token();
    const OnvifLogin login = m_options.login;
    const bool takesTokens = login != OnvifLogin::HttpOnly && login != OnvifLogin::BasicOnly;
    return takesTokens && token && !m_account.isLocked() && token->user == m_camera.user() &&
           token->proves(m_camera.password(), m_camera.clock(), maxSkew);
}

void HttpServer::onOnvif(SoupServerMessage *message)
{
    const SoupMessageBody *body = soup_server_message_get_request_body(message);
    soap::Request request;
    const bool parsed =
        request.parse(std::string_view(body->data, static_cast<std::size_t>(body->length)));
    // A client may send an empty request first to learn how to log in.
    if (!(parsed ? mayAsk(message, request) : isProven(message))) {
        noteRefusal(message, parsed && request.token());
        refuse(message);
        return;
    }
    if (!parsed) {
        respond(message, 400, soapType,
                soap::fault("Sender", "ter:WellFormed", nullptr, "This is no SOAP request"));
        return;
    }
    const OnvifServer::Answer answer = m_onvif.answer(request);
    const bool isMove =
        request.name() == "SetNetworkInterfaces" || request.name() == "SetNetworkProtocols";
    if (m_options.lostAnswers && isMove && answer.status == 200) {
        closeConnection(message);
        return;
    }
    respond(message, static_cast<guint>(answer.status), soapType, answer.text);
}

void HttpServer::onSnapshot(SoupServerMessage *message, const std::string &token)
{
    const std::optional<StreamKind> stream = m_onvif.snapshotStream(token);
    if (!stream) {
        respond(message, 404, "text/plain", "404 Not Found\n");
        return;
    }
    // A token of WS-Security has no place in such a request.
    if (!isProven(message, m_digest)) {
        noteRefusal(message, false);
        respond(message, 401, "text/plain", "401 Unauthorized\n");
        soup_auth_domain_challenge(m_digest, message);
        return;
    }
    ++m_snapshots;
    respond(message, 200, "image/jpeg", m_camera.snapshot(*stream));
}

void HttpServer::onForm(SoupServerMessage *message, const char *path)
{
    if (m_forms.fault() == CommandForms::Fault::Silent) {
        soup_server_message_pause(message);
        return;
    }
    if (m_forms.fault() == CommandForms::Fault::Garbage) {
        sendGarbage(message);
        return;
    }
    if (!isProven(message, m_basic)) {
        noteRefusal(message, false);
        respond(message, 401, "text/plain", "401 Unauthorized\n");
        soup_auth_domain_challenge(m_basic, message);
        return;
    }
    const char *query = g_uri_get_query(soup_server_message_get_uri(message));
    const std::string command = path + std::string_view("/form/").size();
    respond(message, 200, "text/plain", m_forms.answer(command, query ? query : ""));
}

void HttpServer::onPage(SoupServerMessage *message)
{
    const std::string name = htmlEscaped(m_camera.identity().name);
    respond(message, 200, "text/html; charset=utf-8",
            "<!doctype html><title>" + name + "</title><h1>" + name + "</h1><p>Simulated camera " +
                m_camera.identity().uid + "</p>\n");
}

HttpPolicy::HttpPolicy(Front front, bool closesAfter401)
    : m_front(front)
    , m_closesAfter401(closesAfter401)
    , m_requests([this](MessageSplitter::Kind kind, std::string request) {
        const std::size_t line = request.find("\r\n");
        const bool hasHead = kind == MessageSplitter::Kind::Message && line != std::string::npos;
        std::string added;
        if (hasHead && headerValue(request, "Host").empty())
            added = "\r\nHost: camera";
        if (hasHead && m_front != Front::All)
            added += std::string("\r\n") + frontHeader + ": " +
                     (m_front == Front::Web ? "web" : "onvif");
        request.insert(hasHead ? line : 0, added);
        m_link->toServer(request);
    })
{
}

void HttpPolicy::fromClient(std::string_view bytes, Link &link)
{
    if (m_wasRefused && m_closesAfter401) {
        link.close();
        return;
    }
    m_link = &link;
    m_requests.feed(bytes);
}

void HttpPolicy::fromServer(std::string_view bytes, Link &link)
{
    m_wasRefused = m_wasRefused || bytes.starts_with("HTTP/1.1 401");
    link.toClient(bytes);
}

} // namespace camsim
