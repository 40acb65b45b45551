#pragma once

#include "platform/base/timer.h"
#include "platform/rtsp/exchange.h"
#include "platform/rtsp/transport_header.h"

#include <string>

namespace rtsp {

/**
 * Tells the camera that its session is still wanted (RFC 2326 12.37, 10.8): GET_PARAMETER without a
 * body where the camera lists it, else OPTIONS, and the other one once that is refused or goes
 * unanswered. The answers are not waited for, and none of them ends the stream. Loop thread.
 */
class KeepAlive
{
public:
    /// @param publicMethods the Public header of an answer to OPTIONS; may be empty
    void setMethods(const std::string &publicMethods);
    /// The exchange must outlive this object.
    void start(Exchange &exchange, std::string url, const SessionHeader &session);
    void stop() { m_timer.stop(); }

private:
    void arm();
    void send();
    void answered(const Reply *reply, bool wasParameter);

    Exchange *m_exchange = nullptr;
    std::string m_url;
    SessionHeader m_session;
    base::Timer m_timer;
    bool m_usesParameter = false;
    bool m_isKnown = false; ///< the camera has told its methods
};

} // namespace rtsp
