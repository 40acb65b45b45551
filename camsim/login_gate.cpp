#include "camsim/login_gate.h"

#include "camsim/message_splitter.h"

#include <glib.h>

#include <cstdlib>

namespace camsim {

namespace {

constexpr const char *realm = "camsim";

std::string hash(GChecksumType type, const std::string &text)
{
    gchar *digest = g_compute_checksum_for_string(type, text.c_str(), -1);
    std::string result(digest);
    g_free(digest);
    return result;
}

std::string newNonce()
{
    gchar *text = g_uuid_string_random();
    std::string result(text);
    g_free(text);
    return result;
}

/// The value of a parameter of an Authorization header, without its quotation marks.
std::string parameter(const std::string &login, const std::string &name)
{
    for (std::size_t at = login.find(name + '='); at != std::string::npos;
         at = login.find(name + '=', at + 1)) {
        const char before = at == 0 ? ' ' : login[at - 1];
        if (before != ' ' && before != ',')
            continue;
        const std::size_t begin = at + name.size() + 1;
        if (begin < login.size() && login[begin] == '"')
            return login.substr(begin + 1, login.find('"', begin + 1) - begin - 1);
        return login.substr(begin, login.find_first_of(", ", begin) - begin);
    }
    return {};
}

std::string basicLogin(const Account &account)
{
    const std::string plain = account.user() + ':' + account.password();
    gchar *encoded = g_base64_encode(reinterpret_cast<const guchar *>(plain.data()), plain.size());
    std::string result = std::string("Basic ") + encoded;
    g_free(encoded);
    return result;
}

} // namespace

Account::Account(std::string user, std::string password, int lockAfter)
    : m_user(std::move(user))
    , m_lockAfter(lockAfter)
    , m_password(std::move(password))
{
}

std::string Account::password() const
{
    const std::lock_guard lock(m_mutex);
    return m_password;
}

void Account::setPassword(const std::string &password)
{
    const std::lock_guard lock(m_mutex);
    m_password = password;
}

void Account::noteWrong()
{
    const std::lock_guard lock(m_mutex);
    ++m_wrong;
    ++m_wrongSinceUnlocked;
}

int Account::wrongLogins() const
{
    const std::lock_guard lock(m_mutex);
    return m_wrong;
}

bool Account::isLocked() const
{
    const std::lock_guard lock(m_mutex);
    return m_lockAfter > 0 && m_wrongSinceUnlocked >= m_lockAfter;
}

void Account::unlock()
{
    const std::lock_guard lock(m_mutex);
    m_wrongSinceUnlocked = 0;
}

LoginGate::LoginGate(Account &account, RtspLogin kind)
    : m_account(account)
    , m_kind(kind)
    , m_nonce(newNonce())
{
}

std::string LoginGate::digestChallenge(bool isStale) const
{
    std::string text =
        std::string("WWW-Authenticate: Digest realm=\"") + realm + "\", nonce=\"" + m_nonce + '"';
    if (m_kind == RtspLogin::Sha256)
        text += ", algorithm=SHA-256";
    if (hasQop())
        text += ", qop=\"auth\"";
    if (isStale)
        text += ", stale=true";
    return text + "\r\n";
}

bool LoginGate::proves(const std::string &request, const std::string &login, bool &isStale)
{
    if (login.starts_with("Basic "))
        return takesBasic() && login == basicLogin(m_account);
    if (!login.starts_with("Digest "))
        return false;
    const std::size_t methodEnd = request.find(' ');
    const std::string method = request.substr(0, methodEnd);
    const std::string uri =
        request.substr(methodEnd + 1, request.find(' ', methodEnd + 1) - methodEnd - 1);
    const GChecksumType type = m_kind == RtspLogin::Sha256 ? G_CHECKSUM_SHA256 : G_CHECKSUM_MD5;
    const std::string nonce = parameter(login, "nonce");
    const std::string account =
        hash(type, m_account.user() + ':' + realm + ':' + m_account.password());
    const std::string asked = hash(type, method + ':' + parameter(login, "uri"));
    std::string middle = nonce;
    unsigned long count = 0;
    if (hasQop()) {
        const std::string countText = parameter(login, "nc");
        count = std::strtoul(countText.c_str(), nullptr, 16);
        if (parameter(login, "qop") != "auth" || countText.size() != 8 ||
            parameter(login, "cnonce").empty())
            return false;
        middle += ':' + countText + ':' + parameter(login, "cnonce") + ":auth";
    }
    const bool isRight =
        parameter(login, "username") == m_account.user() && parameter(login, "uri") == uri &&
        parameter(login, "response") == hash(type, account + ':' + middle + ':' + asked);
    // A nonce of another connection, or one that is used again, is no wrong password.
    isStale = isRight && (nonce != m_nonce || (hasQop() && count <= m_count));
    if (isRight && !isStale)
        m_count = count;
    return isRight && !isStale;
}

std::string LoginGate::challenges(const std::string &request)
{
    if (request.starts_with("OPTIONS "))
        return {};
    const std::string login(headerValue(request, "Authorization"));
    bool isStale = false;
    const bool isProven = !login.empty() && proves(request, login, isStale);
    if (isProven && !m_account.isLocked())
        return {};
    if (!login.empty() && !isProven && !isStale)
        m_account.noteWrong();
    return digestChallenge(isStale) +
           (takesBasic() ? std::string("WWW-Authenticate: Basic realm=\"") + realm + "\"\r\n"
                         : std::string());
}

std::string LoginGate::withServersLogin(const std::string &request) const
{
    const std::string name = "\r\nAuthorization:";
    std::string result = request;
    const std::size_t at = result.find(name);
    if (at != std::string::npos)
        result.replace(at + name.size(), result.find("\r\n", at + 2) - at - name.size(),
                       ' ' + basicLogin(m_account));
    return result;
}

} // namespace camsim
