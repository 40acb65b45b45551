#include "platform/cammgr/rtsp_login.h"

#include "platform/cammgr/glib_ptr.h"

#include <gst/rtsp/rtsp.h>

#include <memory>

namespace cammgr {
namespace {

struct MessageFree
{
    void operator()(GstRTSPMessage *message) const { gst_rtsp_message_free(message); }
};

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

} // namespace

bool RtspLogin::takeChallenge(const std::vector<std::string> &headers)
{
    m_scheme = Scheme::None;
    if (m_username.empty() && m_password.empty())
        return false;

    GstRTSPMessage *made = nullptr;
    gst_rtsp_message_new_response(&made, GST_RTSP_STS_UNAUTHORIZED, nullptr, nullptr);
    const std::unique_ptr<GstRTSPMessage, MessageFree> message(made);
    for (const std::string &header : headers)
        gst_rtsp_message_add_header(made, GST_RTSP_HDR_WWW_AUTHENTICATE, header.c_str());
    GstRTSPAuthCredential **credentials =
        gst_rtsp_message_parse_auth_credentials(made, GST_RTSP_HDR_WWW_AUTHENTICATE);
    for (GstRTSPAuthCredential **each = credentials; each && *each; ++each) {
        if ((*each)->scheme == GST_RTSP_AUTH_BASIC && m_scheme == Scheme::None)
            m_scheme = Scheme::Basic;
        if ((*each)->scheme != GST_RTSP_AUTH_DIGEST || m_scheme == Scheme::Digest)
            continue;
        std::string realm, nonce, opaque, algorithm = "MD5";
        for (GstRTSPAuthParam **param = (*each)->params; param && *param; ++param) {
            const std::string value = (*param)->value ? (*param)->value : "";
            if (g_ascii_strcasecmp((*param)->name, "realm") == 0)
                realm = value;
            else if (g_ascii_strcasecmp((*param)->name, "nonce") == 0)
                nonce = value;
            else if (g_ascii_strcasecmp((*param)->name, "opaque") == 0)
                opaque = value;
            else if (g_ascii_strcasecmp((*param)->name, "algorithm") == 0)
                algorithm = value;
        }
        if (g_ascii_strcasecmp(algorithm.c_str(), "MD5") != 0)
            continue; // neither can the stream be played with it
        m_scheme = Scheme::Digest;
        m_realm = realm;
        m_nonce = nonce;
        m_opaque = opaque;
    }
    if (credentials)
        gst_rtsp_auth_credentials_free(credentials);
    return m_scheme != Scheme::None;
}

std::string RtspLogin::authorization(const char *method, const std::string &uri) const
{
    if (m_scheme == Scheme::Basic) {
        const std::string pair = m_username + ':' + m_password;
        const TextPtr encoded(
            g_base64_encode(reinterpret_cast<const guchar *>(pair.data()), pair.size()));
        return std::string("Basic ") + encoded.get();
    }
    if (m_scheme != Scheme::Digest)
        return {};
    const TextPtr response(
        gst_rtsp_generate_digest_auth_response(nullptr, method, m_realm.c_str(), m_username.c_str(),
                                               m_password.c_str(), uri.c_str(), m_nonce.c_str()));
    std::string value = "Digest username=" + quoted(m_username) + ", realm=" + quoted(m_realm) +
                        ", nonce=" + quoted(m_nonce) + ", uri=" + quoted(uri) +
                        ", response=" + quoted(response ? response.get() : "");
    if (!m_opaque.empty())
        value += ", opaque=" + quoted(m_opaque);
    return value;
}

} // namespace cammgr
