#include "platform/rtsp/login_policy.h"

#include <gst/rtsp/rtsp.h>

#include <algorithm>
#include <memory>

namespace rtsp {

namespace {

struct MessageFree
{
    void operator()(GstRTSPMessage *message) const { gst_rtsp_message_free(message); }
};

void readParameter(const GstRTSPAuthParam &parameter, LoginChallenge &challenge)
{
    const std::string value = parameter.value ? parameter.value : "";
    if (g_ascii_strcasecmp(parameter.name, "realm") == 0)
        challenge.realm = value;
    else if (g_ascii_strcasecmp(parameter.name, "nonce") == 0)
        challenge.nonce = value;
    else if (g_ascii_strcasecmp(parameter.name, "opaque") == 0)
        challenge.opaque = value;
    else if (g_ascii_strcasecmp(parameter.name, "algorithm") == 0)
        challenge.algorithm = value;
    else if (g_ascii_strcasecmp(parameter.name, "stale") == 0)
        challenge.stale = g_ascii_strcasecmp(value.c_str(), "true") == 0;
}

bool isDigest(const LoginChallenge &challenge)
{
    return challenge.scheme == LoginChallenge::Scheme::Digest;
}

} // namespace

bool LoginChallenge::isMd5() const
{
    return scheme == Scheme::Digest && g_ascii_strcasecmp(algorithm.c_str(), "MD5") == 0;
}

std::vector<LoginChallenge> parseChallenges(const std::vector<std::string> &headers)
{
    GstRTSPMessage *made = nullptr;
    gst_rtsp_message_new_response(&made, GST_RTSP_STS_UNAUTHORIZED, nullptr, nullptr);
    const std::unique_ptr<GstRTSPMessage, MessageFree> message(made);
    for (const std::string &header : headers)
        gst_rtsp_message_add_header(made, GST_RTSP_HDR_WWW_AUTHENTICATE, header.c_str());
    GstRTSPAuthCredential **credentials =
        gst_rtsp_message_parse_auth_credentials(made, GST_RTSP_HDR_WWW_AUTHENTICATE);
    std::vector<LoginChallenge> challenges;
    for (GstRTSPAuthCredential **each = credentials; each && *each; ++each) {
        if ((*each)->scheme != GST_RTSP_AUTH_BASIC && (*each)->scheme != GST_RTSP_AUTH_DIGEST)
            continue;
        LoginChallenge challenge;
        if ((*each)->scheme == GST_RTSP_AUTH_DIGEST)
            challenge.scheme = LoginChallenge::Scheme::Digest;
        for (GstRTSPAuthParam **parameter = (*each)->params; parameter && *parameter; ++parameter)
            readParameter(**parameter, challenge);
        challenges.push_back(std::move(challenge));
    }
    if (credentials)
        gst_rtsp_auth_credentials_free(credentials);
    return challenges;
}

const LoginChallenge *LoginPolicy::choose(const std::vector<LoginChallenge> &challenges, bool tls)
{
    if (std::any_of(challenges.begin(), challenges.end(), isDigest))
        m_sawDigest = true;
    const auto md5 = std::find_if(challenges.begin(), challenges.end(),
                                  [](const LoginChallenge &c) { return c.isMd5(); });
    if (md5 != challenges.end())
        return &*md5;
    if (!tls && (m_sawDigest || !m_isTrusted))
        return nullptr;
    const auto basic = std::find_if_not(challenges.begin(), challenges.end(), isDigest);
    return basic == challenges.end() ? nullptr : &*basic;
}

} // namespace rtsp
