#pragma once

#include <gio/gio.h>

namespace base {

/// Sends each piece at once, however small (RFC 9293 3.7.4).
void sendWithoutDelay(GSocket *socket);

/// Acknowledges what was read now instead of up to 40 ms later. Holds for what
/// is under way only: to be called after each read. Does nothing where a system
/// has no such option.
void acknowledgeNow(GSocket *socket);

} // namespace base
