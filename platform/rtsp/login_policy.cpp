#include "platform/rtsp/login_policy.h"

namespace rtsp {

bool LoginPolicy::permitsBasic(const std::vector<base::HttpChallenge> &challenges, bool tls)
{
    if (base::offersScheme(challenges, "digest"))
        m_sawDigest = true;
    return tls || (m_isTrusted && !m_sawDigest);
}

} // namespace rtsp
