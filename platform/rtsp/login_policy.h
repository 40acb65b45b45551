#pragma once

#include "platform/base/http_login.h"
#include "platform/base/login_limit.h"

#include <atomic>
#include <vector>

namespace rtsp {

/**
 * What of a password may be sent to one camera: a digest always; the password
 * itself (Basic) over TLS, or to a camera that the user named and that has
 * never offered anything better; and no more wrong logins than do no harm. Shared by all
 * connections of one player, so that what one has seen holds for the others. Any thread.
 */
class LoginPolicy : public base::LoginLimit
{
public:
    /// The device only claims to be the camera: it answered a search of the local
    /// network.
    void distrust() { m_isTrusted = false; }

    /// Takes notice of an answer's challenges.
    /// @return whether the password itself may be sent when there is no digest to
    /// answer
    bool permitsBasic(const std::vector<base::HttpChallenge> &challenges, bool tls);

private:
    std::atomic<bool> m_isTrusted = true;
    std::atomic<bool> m_sawDigest = false;
};

} // namespace rtsp
