#pragma once

#include "platform/base/http_login.h"
#include "platform/rtsp/login_policy.h"

#include <optional>
#include <string>
#include <vector>

namespace rtsp {

/// Answers the login challenges of one camera (RFC 2326 15.3, RFC 7616, RFC
/// 7617): the strongest digest before Basic. What was learned from a challenge
/// serves for later requests too.
class RtspLogin
{
public:
    RtspLogin() = default;
    /// Both in UTF-8.
    RtspLogin(std::string username, std::string password)
        : m_credentials{std::move(username), std::move(password)}
    {
    }

    /// Takes the WWW-Authenticate headers of a 401; false when there is no login
    /// to answer them with, or none that the policy lets be answered. tls: the
    /// connection is encrypted.
    bool takeChallenge(const std::vector<std::string> &headers, LoginPolicy &policy, bool tls);

    /// The login was refused: the next request carries it in ISO 8859-1, once. False where that is
    /// no other login, or the camera wants UTF-8.
    bool tryLatin1();
    bool isLatin1() const { return m_isLatin1; }

    /// What was learned is not used any more: the camera refuses it.
    void forgetChallenge();

    /// The Authorization header's value for one request; empty before the first
    /// challenge.
    std::string authorization(const std::string &method, const std::string &uri);

    /// Whether a challenge was taken: requests carry a login.
    bool isInUse() const { return m_digest || m_isBasic; }
    /// The last challenge refused the nonce, not the password.
    bool isStale() const { return m_digest && m_digest->isStale(); }
    /// Of the last challenge; empty for Basic.
    std::string nonce() const { return m_digest ? m_digest->nonce() : std::string(); }

    /// The same user name and password.
    bool operator==(const RtspLogin &other) const { return m_credentials == other.m_credentials; }

private:
    base::Credentials m_credentials;
    bool m_isLatin1 = false;
    bool m_isBasic = false;
    std::optional<base::HttpDigest> m_digest;
};

} // namespace rtsp
