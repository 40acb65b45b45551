#include "platform/rtsp/rtsp_login.h"

namespace rtsp {

bool RtspLogin::takeChallenge(const std::vector<std::string> &headers, LoginPolicy &policy,
                              bool tls)
{
    const std::vector<base::HttpChallenge> challenges = base::parseChallenges(headers);
    const bool mayUseBasic = policy.permitsBasic(challenges, tls);
    m_digest.reset();
    m_isBasic = false;
    if (m_username.empty() && m_password.empty())
        return false;
    m_digest = base::HttpDigest::choose(challenges);
    m_isBasic = !m_digest && mayUseBasic && base::offersScheme(challenges, "basic");
    return isInUse();
}

void RtspLogin::forgetChallenge()
{
    m_digest.reset();
    m_isBasic = false;
}

std::string RtspLogin::authorization(const std::string &method, const std::string &uri)
{
    if (m_digest)
        return m_digest->authorization(method, uri, {m_username, m_password});
    return m_isBasic ? base::basicAuthorization({m_username, m_password}) : std::string();
}

} // namespace rtsp
