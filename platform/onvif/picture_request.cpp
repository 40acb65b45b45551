#include "platform/onvif/picture_request.h"

#include "platform/onvif/log.h"
#include "platform/onvif/login_memory.h"
#include "platform/onvif/net_address.h"

#include <utility>

namespace onvif {

namespace {

constexpr unsigned limitMilliseconds = 5000;
constexpr const char *limitedRequest = "picture";
constexpr unsigned statusOk = 200;
constexpr unsigned statusUnauthorized = 401;
constexpr unsigned statusForbidden = 403;

/// Begins as a JPEG does (ITU-T T.81 B.2.1) and is not cut off.
bool isJpeg(const std::string &bytes)
{
    return bytes.starts_with("\xff\xd8\xff") && bytes.rfind("\xff\xd9") != std::string::npos;
}

} // namespace

PictureRequest::PictureRequest(GMainContext *context, std::string address,
                               base::Credentials credentials, ClearPassword clear,
                               std::shared_ptr<base::LoginLimit> limit, Done done)
    : m_context(g_main_context_ref(context))
    , m_session(newHttpSession(context))
    , m_address(std::move(address))
    , m_credentials(std::move(credentials))
    , m_clear(clear)
    , m_limit(std::move(limit))
    , m_done(std::move(done))
{
    get({});
}

void PictureRequest::get(const std::string &authorization)
{
    HttpRequest request;
    request.isGet = true;
    request.address = m_address;
    request.authorization = authorization;
    request.milliseconds = limitMilliseconds;
    request.maxBytes = maxPictureBytes;
    request.mayReuseConnection = true;
    const bool isSigned = !authorization.empty();
    m_exchange =
        sendHttp(m_context.get(), m_session.get(), std::move(request),
                 [this, isSigned](const HttpAnswer &answer) { answered(answer, isSigned); });
}

void PictureRequest::answered(const HttpAnswer &answer, bool wasSigned)
{
    if (answer.status == statusUnauthorized && !wasSigned) {
        if (const std::string authorization = answerTo(answer); !authorization.empty()) {
            get(authorization);
            return;
        }
    }
    if (m_limit && wasSigned && answer.status == statusUnauthorized)
        m_limit->refused(limitedRequest);
    else if (m_limit && wasSigned && answer.status == statusOk)
        m_limit->accepted(limitedRequest);
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: HTTP status %u", m_address.c_str(), answer.status);
    // The receiver may destroy this request, and with it the answer.
    const Done done = std::move(m_done);
    if (answer.status == statusOk && !answer.isTooLarge && isJpeg(answer.body)) {
        const std::string picture = answer.body;
        done(PictureStatus::Ok, picture);
    } else {
        const bool isRefused =
            answer.status == statusUnauthorized || answer.status == statusForbidden;
        done(isRefused ? PictureStatus::Refused : PictureStatus::Failed, {});
    }
}

/// The login that a challenge may have; empty for none.
std::string PictureRequest::answerTo(const HttpAnswer &answer) const
{
    const std::optional<HttpAddress> address = parseHttpAddress(m_address);
    const std::vector<base::HttpChallenge> challenges = base::parseChallenges(answer.challenges);
    if (!address || m_credentials.user.empty() || (m_limit && !m_limit->mayTryBeside()))
        return {};
    if (base::offersScheme(challenges, "digest"))
        LoginMemory::instance().sawSecretLogin(address->host);
    if (std::optional<base::HttpDigest> digest = base::HttpDigest::choose(challenges))
        return digest->authorization("GET", address->path, m_credentials);
    const bool mayBeClear =
        address->secure || (m_clear == ClearPassword::AsLastResort &&
                            !LoginMemory::instance().hasSecretLogin(address->host));
    return base::offersScheme(challenges, "basic") && mayBeClear
               ? base::basicAuthorization(m_credentials)
               : std::string();
}

} // namespace onvif
