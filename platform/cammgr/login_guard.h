#pragma once

#include "platform/rtsp/login_policy.h"

#include <gst/rtsp/rtsp.h>

#include <gst/gst.h>

#include <memory>

namespace cammgr {

/**
 * Stands between a camera's challenges and an "rtspsrc", which left alone answers whatever it is
 * asked for, and a refusal up to eight times in a row, which locks accounts. Lets through what the
 * policy allows, and each challenge once. Must outlive the running element.
 */
class LoginGuard
{
public:
    LoginGuard(std::shared_ptr<rtsp::LoginPolicy> policy, bool tls)
        : m_policy(std::move(policy))
        , m_tls(tls)
    {
    }
    LoginGuard(const LoginGuard &) = delete;
    LoginGuard &operator=(const LoginGuard &) = delete;

    /// Makes an "rtspsrc" with this guard before it; floating. Null when the framework lacks it.
    GstElement *makeSource();

    /// Takes the challenges that must not be answered out of an answer, and what must not be
    /// believed: RTP-Info's first sequence number (RFC 2326 12.33), before which the framework
    /// drops all packets, and which cameras get wrong.
    void filter(GstRTSPMessage *response);

private:
    const std::shared_ptr<rtsp::LoginPolicy> m_policy;
    const bool m_tls;
    // The thread of the element.
    int m_answers = 0; ///< to challenges since a request last succeeded
};

} // namespace cammgr
