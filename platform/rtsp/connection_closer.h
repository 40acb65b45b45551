#pragma once

#include "platform/base/tcp_channel.h"

#include <functional>
#include <optional>
#include <string>

namespace rtsp {

/// Sends the last words and closes when the camera has answered or closed, or after 100 ms. Loop
/// thread. What comes meanwhile is read and dropped: closing a connection with unread bytes takes
/// back what was sent.
/// @param toCamera the other end of a tunnel, which takes the words; nullopt for none
/// @param closed runs when that is done; may be null
void closeInBackground(base::TcpChannel channel, std::optional<base::TcpChannel> toCamera,
                       const std::string &lastWords, std::function<void()> closed);

} // namespace rtsp
