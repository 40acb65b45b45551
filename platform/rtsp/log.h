#pragma once

namespace rtsp {

/// GLib's log domain of this folder. All messages have the level "debug", which GLib prints with
/// G_MESSAGES_DEBUG=rtsp only: addresses, methods and statuses; never a password.
inline constexpr const char *logDomain = "rtsp";

} // namespace rtsp
