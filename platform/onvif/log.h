#pragma once

#include <glib.h>

namespace onvif {

/// GLib's log domain of this folder. All messages have the level "debug", which GLib prints with
/// G_MESSAGES_DEBUG=onvif only: addresses, actions, HTTP statuses and faults; never a password.
inline constexpr const char *logDomain = "onvif";

} // namespace onvif
