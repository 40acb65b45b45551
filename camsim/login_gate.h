#pragma once

#include "camsim/options.h"

#include <mutex>
#include <string>

namespace camsim {

/// The account of a camera, and how often somebody came with a wrong login. Any thread.
class Account
{
public:
    /// lockAfter: see Options.
    Account(std::string user, std::string password, int lockAfter);

    std::string user() const { return m_user; }
    std::string password() const;
    void setPassword(const std::string &password);
    void noteWrong();
    int wrongLogins() const;
    bool canBeLocked() const { return m_lockAfter > 0; }
    /// Even the right login is refused.
    bool isLocked() const;
    void unlock();

private:
    const std::string m_user;
    const int m_lockAfter;
    mutable std::mutex m_mutex; // protects what follows
    std::string m_password;
    int m_wrong = 0;
    int m_wrongSinceUnlocked = 0;
};

/// Checks the login of each request of one RTSP connection, as the camera demands it. One thread.
class LoginGate
{
public:
    LoginGate(Account &account, RtspLogin kind);

    /// Empty when the request may pass, else the headers of the refusal's challenges, each ended by
    /// CRLF. A wrong login is noted with the account.
    std::string challenges(const std::string &request);
    /// The request with a login that the server behind takes.
    std::string withServersLogin(const std::string &request) const;

private:
    bool takesBasic() const { return m_kind == RtspLogin::Any; }
    bool hasQop() const { return m_kind == RtspLogin::Qop || m_kind == RtspLogin::Sha256; }
    std::string digestChallenge(bool isStale) const;
    bool proves(const std::string &request, const std::string &login, bool &isStale);

    Account &m_account;
    const RtspLogin m_kind;
    const std::string m_nonce;
    unsigned long m_count = 0; ///< of the last login with qop
};

} // namespace camsim
