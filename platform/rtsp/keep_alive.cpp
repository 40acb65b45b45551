#include "platform/rtsp/keep_alive.h"

#include "platform/base/text.h"

#include <algorithm>

namespace rtsp {
namespace {

using namespace std::chrono_literals;

constexpr int firstErrorStatus = 400;
constexpr int statusUnauthorized = 401;
constexpr int statusSessionNotFound = 454;

std::chrono::milliseconds periodOf(const SessionHeader &session)
{
    return std::max(std::chrono::milliseconds(session.timeoutSeconds * 1000 / 2), 1000ms);
}

bool lists(const std::string &publicMethods, const std::string &method)
{
    return base::lowerAscii(publicMethods).find(base::lowerAscii(method)) != std::string::npos;
}

} // namespace

void KeepAlive::setMethods(const std::string &publicMethods)
{
    m_isKnown = m_isKnown || !publicMethods.empty();
    m_usesParameter = lists(publicMethods, "GET_PARAMETER");
}

void KeepAlive::start(Exchange &exchange, std::string url, const SessionHeader &session)
{
    m_exchange = &exchange;
    m_url = std::move(url);
    m_session = session;
    arm();
}

void KeepAlive::arm()
{
    m_timer.start(
        periodOf(m_session), [this] { send(); });
}

void KeepAlive::send()
{
    arm();
    const bool parameter = m_usesParameter;
    Request request{.method = parameter ? "GET_PARAMETER" : "OPTIONS", .url = m_url, .headers = {}};
    if (!m_session.id.empty())
        request.headers.emplace_back("Session", m_session.id);
    m_exchange->send(std::move(request), periodOf(m_session),
                     [this, parameter](const Reply *reply) { answered(reply, parameter); });
}

void KeepAlive::answered(const Reply *reply, bool wasParameter)
{
    const bool isRefused =
        !reply || (reply->status >= firstErrorStatus && reply->status != statusUnauthorized &&
                   reply->status != statusSessionNotFound);
    if (isRefused)
        m_usesParameter = !wasParameter;
    else if (!wasParameter && !m_isKnown)
        setMethods(reply->first("Public"));
}

} // namespace rtsp
