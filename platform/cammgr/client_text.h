#pragma once

#include <string>

namespace cammgr {

/// A text as a client hands it over, as UTF-8. Clients pass UTF-8 or Latin-1; what is not valid
/// UTF-8 is taken as Latin-1, so that a user name or a path with an accent means the same here as
/// in the camera's web page and in the file system. Null gives the empty text.
std::string utf8Text(const char *text);

/// Whether a text can stand in a request line: no blanks and no control characters.
bool isOneWord(const std::string &text);

} // namespace cammgr
