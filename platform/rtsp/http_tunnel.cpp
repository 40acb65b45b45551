#include "platform/rtsp/http_tunnel.h"

#include "platform/base/glib_ptr.h"
#include "platform/rtsp/message_head.h"

#include <utility>

namespace rtsp {
namespace {

constexpr size_t maxHead = size_t{16} * 1024;
constexpr int statusOk = 200;
constexpr int statusUnauthorized = 401;
constexpr const char *tunnelRequest = "GET";
constexpr const char *tunnelled = "application/x-rtsp-tunnelled";

std::string newCookie()
{
    const base::GTextPtr uuid(g_uuid_string_random());
    return std::string(uuid.get()).substr(0, 22);
}

} // namespace

HttpTunnel::HttpTunnel(const base::Endpoint &endpoint, std::string path, RtspLogin login,
                       std::shared_ptr<LoginPolicy> policy, std::chrono::milliseconds limit,
                       Handlers handlers)
    : m_endpoint(endpoint)
    , m_path(path.empty() ? "/" : std::move(path))
    , m_login(std::move(login))
    , m_policy(std::move(policy))
    , m_limit(limit)
    , m_handlers(std::move(handlers))
    , m_cookie(newCookie())
{
    get();
}

std::string HttpTunnel::encoded(std::string_view text)
{
    const base::GTextPtr base64(
        g_base64_encode(reinterpret_cast<const guchar *>(text.data()), text.size()));
    return base64.get();
}

std::string HttpTunnel::head(const char *method, const char *more)
{
    std::string text = method + (' ' + m_path) + " HTTP/1.0\r\nHost: " + m_endpoint.host +
                       "\r\nUser-Agent: Zelvaro\r\nx-sessioncookie: " + m_cookie +
                       "\r\nPragma: no-cache\r\nCache-Control: no-cache\r\n" + more;
    const std::string authorization = m_login.authorization(method, m_path);
    if (!authorization.empty())
        text += "Authorization: " + authorization + "\r\n";
    return text + "\r\n";
}

void HttpTunnel::get()
{
    m_ends.firstBytes.clear();
    m_timer.start(
        2 * m_limit, [this] { ended(base::ChannelEnd::Closed); });
    m_ends.fromCamera.open(m_endpoint, m_limit,
                           {.opened =
                                [this] {
                                    const std::string accept =
                                        std::string("Accept: ") + tunnelled + "\r\n";
                                    m_ends.fromCamera.send(head("GET", accept.c_str()));
                                },
                            .received = [this](std::string_view data) { received(data); },
                            .ended = [this](base::ChannelEnd reason) { ended(reason); }});
}

void HttpTunnel::received(std::string_view data)
{
    const bool hadHead = findHeadEnd(m_ends.firstBytes) != std::string::npos;
    m_ends.firstBytes += data;
    const size_t headSize = findHeadEnd(m_ends.firstBytes);
    if (headSize != std::string::npos && !hadHead)
        answered(headSize);
    else if (m_ends.firstBytes.size() > maxHead)
        ended(base::ChannelEnd::Closed);
}

void HttpTunnel::answered(size_t headSize)
{
    const std::string_view head = std::string_view(m_ends.firstBytes).substr(0, headSize);
    const std::optional<Reply> reply =
        head.starts_with("HTTP/") ? parseReplyHead(head) : std::nullopt;
    const int status = reply ? reply->status : 0;
    if (status == statusOk) {
        m_ends.firstBytes.erase(0, headSize);
        if (m_login.isInUse())
            m_policy->accepted(tunnelRequest);
        if (m_login.isInUse() && m_login.isLatin1())
            m_policy->noteLatin1();
        post();
    } else if (status == statusUnauthorized && answersChallenge(*reply)) {
        get();
    } else {
        finish([this, status] { m_handlers.refused(status); });
    }
}

/// Whether the request is to be sent again, with a login that the camera has not refused.
bool HttpTunnel::answersChallenge(const Reply &reply)
{
    const bool isRefused = m_login.isInUse();
    if (isRefused)
        m_policy->refused(tunnelRequest);
    return m_login.takeChallenge(reply.all("WWW-Authenticate"), *m_policy, m_endpoint.tls) &&
           m_policy->mayTry() && (!isRefused || m_login.tryLatin1());
}

void HttpTunnel::post()
{
    // What the camera says meanwhile waits for the one that goes on.
    m_ends.toCamera.open(m_endpoint, m_limit,
                         {.opened =
                              [this] {
                                  const std::string body =
                                      std::string("Content-Type: ") + tunnelled +
                                      "\r\nContent-Length: 32767\r\n"
                                      "Expires: Sun, 9 Jan 1972 00:00:00 GMT\r\n";
                                  m_ends.toCamera.send(head("POST", body.c_str()));
                                  finish([this] { m_handlers.opened(std::move(m_ends)); });
                              },
                          .received = [](std::string_view) {},
                          .ended = [this](base::ChannelEnd reason) { ended(reason); }});
}

void HttpTunnel::ended(base::ChannelEnd reason)
{
    finish([this, reason] { m_handlers.ended(reason); });
}

void HttpTunnel::finish(const std::function<void()> &report)
{
    const std::shared_ptr<HttpTunnel> alive = shared_from_this();
    m_timer.stop();
    if (!std::exchange(m_isDone, true))
        report();
}

void HttpTunnel::cancel()
{
    m_isDone = true;
    m_timer.stop();
    m_ends.fromCamera.close();
    m_ends.toCamera.close();
}

} // namespace rtsp
