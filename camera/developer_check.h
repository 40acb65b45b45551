#pragma once

/// Checks for developers: a broken condition is logged with its source and the program continues.
/// Users never see them. With ZELVARO_ABORT_ON_CHECK set in the environment the program aborts, so
/// that a debugger stops at the place.

/// Checks a condition, which is logged as it is written here. True when it holds, so that a caller
/// may leave early. Any thread.
/// @param source what the condition belongs to, such as "Camera"
#define ZELVARO_CHECK(condition, source)                                                           \
    zelvaro::developerCheck(static_cast<bool>(condition), #condition, source)

namespace zelvaro {

/// Logs `"<condition>" in <source>` to the category "zelvaro.check" unless ok. Any thread.
/// @return ok
bool developerCheck(bool ok, const char *condition, const char *source);

} // namespace zelvaro
