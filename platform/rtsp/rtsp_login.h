#pragma once

#include "platform/rtsp/login_policy.h"

#include <string>
#include <vector>

namespace rtsp {

/// Answers the login challenges of one camera (RFC 2617): digest before basic. What was learned
/// from a challenge serves for later requests too.
class RtspLogin
{
public:
    RtspLogin() = default;
    RtspLogin(std::string username, std::string password)
        : m_username(std::move(username))
        , m_password(std::move(password))
    {
    }

    /// Takes the WWW-Authenticate headers of a 401; false when there is no login to answer them
    /// with, or none that the policy lets be answered. tls: the connection is encrypted.
    bool takeChallenge(const std::vector<std::string> &headers, LoginPolicy &policy, bool tls);

    /// The Authorization header's value for a request; empty before the first challenge.
    std::string authorization(const char *method, const std::string &uri) const;

    /// Whether a challenge was taken: requests carry a login.
    bool isInUse() const { return m_scheme != Scheme::None; }

    bool operator==(const RtspLogin &other) const
    {
        return m_username == other.m_username && m_password == other.m_password;
    }

private:
    enum class Scheme
    {
        None,
        Basic,
        Digest
    };

    std::string m_username;
    std::string m_password;
    Scheme m_scheme = Scheme::None;
    std::string m_realm;
    std::string m_nonce;
    std::string m_opaque;
};

} // namespace rtsp
