#pragma once

#include "platform/base/camera_address.h"
#include "platform/base/tcp_channel.h"
#include "platform/rtsp/message_head.h"
#include "platform/rtsp/rtsp_login.h"

#include <string>

namespace rtsp {

/// A connection over which a camera has described its stream.
struct OpenSession
{
    base::TcpChannel channel;
    base::Endpoint endpoint; ///< that it leads to
    std::string url;         ///< of the request that was answered
    unsigned sequence = 0;   ///< of the last request
    RtspLogin login;         ///< with what was learned from challenges
    Reply description;       ///< the answer to DESCRIBE
};

} // namespace rtsp
