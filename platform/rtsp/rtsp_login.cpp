#include "platform/rtsp/rtsp_login.h"

namespace rtsp {

bool RtspLogin::takeChallenge(const std::vector<std::string> &headers, LoginPolicy &policy,
                              bool tls)
{
    const std::vector<base::HttpChallenge> challenges = base::parseChallenges(headers);
    const bool mayUseBasic = policy.permitsBasic(challenges, tls);
    m_digest.reset();
    m_isBasic = false;
    if (m_credentials == base::Credentials())
        return false;
    m_isLatin1 = m_isLatin1 || (policy.takesLatin1() && base::latin1Of(m_credentials));
    m_digest = base::HttpDigest::choose(challenges);
    m_isBasic = !m_digest && mayUseBasic && base::offersScheme(challenges, "basic");
    return isInUse();
}

bool RtspLogin::tryLatin1()
{
    if (m_isLatin1 || (m_digest && m_digest->wantsUtf8()) || !base::latin1Of(m_credentials))
        return false;
    m_isLatin1 = true;
    return true;
}

void RtspLogin::forgetChallenge()
{
    m_digest.reset();
    m_isBasic = false;
}

std::string RtspLogin::authorization(const std::string &method, const std::string &uri)
{
    const base::Credentials credentials =
        m_isLatin1 ? base::latin1Of(m_credentials).value_or(m_credentials) : m_credentials;
    if (m_digest)
        return m_digest->authorization(method, uri, credentials);
    return m_isBasic ? base::basicAuthorization(credentials) : std::string();
}

} // namespace rtsp
