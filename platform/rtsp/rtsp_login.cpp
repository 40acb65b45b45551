#include "platform/rtsp/rtsp_login.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/http_login.h"

#include <gst/rtsp/rtsp.h>

namespace rtsp {

using base::quoted;

bool RtspLogin::takeChallenge(const std::vector<std::string> &headers, LoginPolicy &policy,
                              bool tls)
{
    m_scheme = Scheme::None;
    const std::vector<LoginChallenge> challenges = parseChallenges(headers);
    const LoginChallenge *chosen = policy.choose(challenges, tls);
    if (!chosen || (m_username.empty() && m_password.empty()))
        return false;
    m_scheme = chosen->isMd5() ? Scheme::Digest : Scheme::Basic;
    m_realm = chosen->realm;
    m_nonce = chosen->nonce;
    m_opaque = chosen->opaque;
    return true;
}

std::string RtspLogin::authorization(const char *method, const std::string &uri) const
{
    if (m_scheme == Scheme::Basic) {
        const std::string pair = m_username + ':' + m_password;
        const base::GTextPtr encoded(
            g_base64_encode(reinterpret_cast<const guchar *>(pair.data()), pair.size()));
        return std::string("Basic ") + encoded.get();
    }
    if (m_scheme != Scheme::Digest)
        return {};
    const base::GTextPtr response(
        gst_rtsp_generate_digest_auth_response(nullptr, method, m_realm.c_str(), m_username.c_str(),
                                               m_password.c_str(), uri.c_str(), m_nonce.c_str()));
    std::string value = "Digest username=" + base::quoted(m_username) +
                        ", realm=" + base::quoted(m_realm) + ", nonce=" + base::quoted(m_nonce) +
                        ", uri=" + base::quoted(uri) +
                        ", response=" + base::quoted(response ? response.get() : "");
    if (!m_opaque.empty())
        value += ", opaque=" + base::quoted(m_opaque);
    return value;
}

} // namespace rtsp
