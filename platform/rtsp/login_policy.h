#pragma once

#include <atomic>
#include <string>
#include <vector>

namespace rtsp {

/// One challenge of a 401 answer (RFC 2617 1.2).
struct LoginChallenge
{
    enum class Scheme
    {
        Basic,
        Digest
    };

    Scheme scheme = Scheme::Basic;
    std::string realm;
    std::string nonce;
    std::string opaque;
    std::string algorithm = "MD5";
    bool stale = false; ///< the login was right, only its nonce is too old

    /// Digest by MD5, the only kind that the receiver computes.
    bool isMd5() const;
};

/// Reads the values of WWW-Authenticate headers. Schemes that are unknown, and garbage, are left
/// out.
std::vector<LoginChallenge> parseChallenges(const std::vector<std::string> &headers);

/**
 * What of a password may be sent to one camera: a digest always; the password itself (Basic) over
 * TLS, or to a camera that the user named and that has never offered anything better. Shared by all
 * connections of one player, so that what one has seen holds for the others. Any thread.
 */
class LoginPolicy
{
public:
    /// The device only claims to be the camera: it answered a search of the local network.
    void distrust() { m_isTrusted = false; }

    /// The challenge to answer; null when none may be.
    const LoginChallenge *choose(const std::vector<LoginChallenge> &challenges, bool tls);

private:
    std::atomic<bool> m_isTrusted = true;
    std::atomic<bool> m_sawDigest = false;
};

} // namespace rtsp
