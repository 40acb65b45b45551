#include "platform/base/http_login.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/text.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace base {

namespace {

constexpr std::size_t maxChallenges = 16;
constexpr std::string_view blanks = " \t";

bool isTokenCharacter(char c)
{
    return g_ascii_isalnum(c) || std::string_view("!#$%&'*+-.^_`|~/").find(c) != std::string::npos;
}

/// Reads the value of one header from its start to its end.
class ChallengeReader
{
public:
    explicit ChallengeReader(std::string_view text) : m_text(text) {}

    void readInto(std::vector<HttpChallenge> &challenges)
    {
        const std::size_t before = challenges.size();
        while (!m_text.empty() && challenges.size() < maxChallenges) {
            const std::string word = lowerAscii(token());
            skip(blanks);
            if (word.empty())
                m_text.remove_prefix(m_text.empty() ? 0 : 1);
            else if (!m_text.empty() && m_text.front() == '=' && challenges.size() > before)
                challenges.back().parameters.emplace(word, value());
            else
                challenges.push_back({word, {}});
            skip(", \t");
        }
    }

private:
    void skip(std::string_view characters)
    {
        m_text.remove_prefix(std::min(m_text.find_first_not_of(characters), m_text.size()));
    }

    std::string_view token()
    {
        const auto end = std::find_if_not(m_text.begin(), m_text.end(), isTokenCharacter);
        const auto length = static_cast<std::size_t>(end - m_text.begin());
        const std::string_view word = m_text.substr(0, length);
        m_text.remove_prefix(length);
        return word;
    }

    std::string value()
    {
        m_text.remove_prefix(1);
        skip(blanks);
        if (m_text.empty() || m_text.front() != '"')
            return std::string(token());
        std::string text;
        std::size_t position = 1;
        for (; position < m_text.size() && m_text[position] != '"'; ++position) {
            if (m_text[position] == '\\' && position + 1 < m_text.size())
                ++position;
            text += m_text[position];
        }
        m_text.remove_prefix(std::min(position + 1, m_text.size()));
        return text;
    }

    std::string_view m_text;
};

std::string parameter(const HttpChallenge &challenge, const char *name)
{
    const auto found = challenge.parameters.find(name);
    return found == challenge.parameters.end() ? std::string() : found->second;
}

bool offersAuth(const std::string &qop)
{
    std::string_view rest = qop;
    while (!rest.empty()) {
        const std::size_t comma = std::min(rest.find(','), rest.size());
        if (lowerAscii(trimmed(rest.substr(0, comma))) == "auth")
            return true;
        rest.remove_prefix(std::min(comma + 1, rest.size()));
    }
    return false;
}

} // namespace

std::optional<Credentials> latin1Of(const Credentials &credentials)
{
    const std::optional<std::string> user = latin1Of(credentials.user);
    const std::optional<std::string> password = latin1Of(credentials.password);
    if (!user || !password)
        return std::nullopt;
    Credentials result{*user, *password};
    return result == credentials ? std::nullopt : std::optional(std::move(result));
}

std::string quoted(const std::string &text)
{
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            result += '\\';
        if (static_cast<unsigned char>(c) >= 0x20)
            result += c;
    }
    return result + '"';
}

std::vector<HttpChallenge> parseChallenges(const std::vector<std::string> &headers)
{
    std::vector<HttpChallenge> challenges;
    for (const std::string &header : headers)
        ChallengeReader(header).readInto(challenges);
    return challenges;
}

bool offersScheme(const std::vector<HttpChallenge> &challenges, const std::string &scheme)
{
    return std::any_of(
        challenges.begin(), challenges.end(),
        [&scheme](const HttpChallenge &challenge) { return challenge.scheme == scheme; });
}

std::optional<HttpDigest> HttpDigest::choose(const std::vector<HttpChallenge> &challenges)
{
    std::optional<HttpDigest> best;
    for (const HttpChallenge &challenge : challenges) {
        HttpDigest digest;
        digest.m_algorithm = parameter(challenge, "algorithm");
        std::string name = lowerAscii(digest.m_algorithm);
        digest.m_isSession = name.ends_with("-sess");
        name = name.substr(0, name.size() - (digest.m_isSession ? 5 : 0));
        const std::string qop = parameter(challenge, "qop");
        const bool isKnown = name.empty() || name == "md5" || name == "sha-256";
        const bool isStronger = !best || (name == "sha-256" && best->m_hash == Hash::Md5);
        if (challenge.scheme != "digest" || !isKnown || !isStronger ||
            (!qop.empty() && !offersAuth(qop)))
            continue;
        digest.m_hash = name == "sha-256" ? Hash::Sha256 : Hash::Md5;
        digest.m_hasQop = !qop.empty();
        digest.m_isStale = lowerAscii(parameter(challenge, "stale")) == "true";
        digest.m_wantsUtf8 = lowerAscii(parameter(challenge, "charset")) == "utf-8";
        digest.m_realm = parameter(challenge, "realm");
        digest.m_nonce = parameter(challenge, "nonce");
        digest.m_opaque = parameter(challenge, "opaque");
        best = std::move(digest);
    }
    return best;
}

std::string HttpDigest::newNonce()
{
    return GTextPtr(g_uuid_string_random()).get();
}

std::string HttpDigest::hash(const std::string &text) const
{
    const GTextPtr sum(
        g_compute_checksum_for_data(m_hash == Hash::Sha256 ? G_CHECKSUM_SHA256 : G_CHECKSUM_MD5,
                                    reinterpret_cast<const guchar *>(text.data()), text.size()));
    return sum.get();
}

std::string HttpDigest::authorization(const std::string &method, const std::string &uri,
                                      const Credentials &credentials,
                                      const std::string &clientNonce)
{
    ++m_count;
    std::array<char, 9> count = {};
    g_snprintf(count.data(), count.size(), "%08x", m_count);

    std::string secret = hash(credentials.user + ':' + m_realm + ':' + credentials.password);
    if (m_isSession)
        secret = hash(secret + ':' + m_nonce + ':' + clientNonce);
    const std::string middle =
        m_hasQop ? ':' + std::string(count.data()) + ':' + clientNonce + ":auth:" : ":";
    const std::string response = hash(secret + ':' + m_nonce + middle + hash(method + ':' + uri));

    std::string value = "Digest username=" + quoted(credentials.user) +
                        ", realm=" + quoted(m_realm) + ", nonce=" + quoted(m_nonce) +
                        ", uri=" + quoted(uri) + ", response=" + quoted(response);
    if (!m_algorithm.empty())
        value += ", algorithm=" + m_algorithm;
    if (!m_opaque.empty())
        value += ", opaque=" + quoted(m_opaque);
    if (m_hasQop)
        value += ", qop=auth, nc=" + std::string(count.data());
    if (m_hasQop || m_isSession)
        value += ", cnonce=" + quoted(clientNonce);
    return value;
}

std::string basicAuthorization(const Credentials &credentials)
{
    const std::string pair = credentials.user + ':' + credentials.password;
    const GTextPtr encoded(
        g_base64_encode(reinterpret_cast<const guchar *>(pair.data()), pair.size()));
    return std::string("Basic ") + encoded.get();
}

} // namespace base
