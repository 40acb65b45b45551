#pragma once

#include <glib.h>

namespace ndcp {

/// GLib's log domain of this folder. All messages have the level "debug", which GLib prints with
/// G_MESSAGES_DEBUG=ndcp only: service addresses, steps and their results; never a password.
inline constexpr const char *logDomain = "ndcp";

} // namespace ndcp
