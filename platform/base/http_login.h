#pragma once

#include "platform/base/credentials.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace base {

/// A quoted-string (RFC 7230 3.2.6) for an Authorization header, of HTTP or RTSP: a text of the
/// device that is sent back to it, without what would end the header.
[[nodiscard]] std::string quoted(const std::string &text);

/// One challenge of a WWW-Authenticate header (RFC 9110, 11.6.1).
struct HttpChallenge
{
    std::string scheme;                            ///< lower case: "basic", "digest"
    std::map<std::string, std::string> parameters; ///< names in lower case
};

/// The challenges of all WWW-Authenticate headers of an answer, in their order. What cannot be read
/// is passed over.
std::vector<HttpChallenge> parseChallenges(const std::vector<std::string> &headers);

/// Whether one of the challenges has this scheme, in lower case.
bool offersScheme(const std::vector<HttpChallenge> &challenges, const std::string &scheme);

/// Answers one digest challenge (RFC 7616, and RFC 2069 where a device offers no qop) for as many
/// requests as the device likes.
class HttpDigest
{
public:
    /// Takes the strongest challenge that can be answered: SHA-256 before MD5, with or without
    /// "-sess" and qop "auth". nullopt when there is none.
    static std::optional<HttpDigest> choose(const std::vector<HttpChallenge> &challenges);

    /// Value of the Authorization header. Each call counts as one request. clientNonce: any text
    /// that nobody can guess.
    std::string authorization(const std::string &method, const std::string &uri,
                              const Credentials &credentials,
                              const std::string &clientNonce = newNonce());

    /// The device refused the nonce, not the password.
    [[nodiscard]] bool isStale() const { return m_isStale; }
    [[nodiscard]] const std::string &nonce() const { return m_nonce; }
    /// The device says that it takes logins in UTF-8 (RFC 7616 3.3).
    [[nodiscard]] bool wantsUtf8() const { return m_wantsUtf8; }

private:
    static std::string newNonce();

    enum class Hash
    {
        Md5,
        Sha256
    };

    [[nodiscard]] std::string hash(const std::string &text) const;

    Hash m_hash = Hash::Md5;
    std::string m_algorithm; ///< as the device wrote it; empty when it did not
    bool m_isSession = false;
    bool m_hasQop = false;
    bool m_isStale = false;
    bool m_wantsUtf8 = false;
    std::string m_realm;
    std::string m_nonce;
    std::string m_opaque;
    unsigned m_count = 0; ///< requests answered with this nonce
};

/// Value of the Authorization header that contains user name and password in clear (RFC 7617).
std::string basicAuthorization(const Credentials &credentials);

} // namespace base
