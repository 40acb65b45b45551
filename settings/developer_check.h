#pragma once

/// Checks for developers: a broken condition is logged with its source and the program continues.
/// Users never see them. With ZELVARO_ABORT_ON_CHECK set in the environment the program aborts, so
/// that a debugger stops at the place.

namespace zelvaro {

/// Logs `"<condition>" in <source>` to the category "zelvaro.check" unless ok. Any thread.
/// @return ok, so that a caller may leave early.
bool developerCheck(bool ok, const char *condition, const char *source);

} // namespace zelvaro
