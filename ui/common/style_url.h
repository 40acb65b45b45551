#pragma once

#include <QString>

namespace zelvaro {

/// A file path as it is written between the brackets of `url(...)` in a style sheet: bare when the
/// syntax takes it bare, else quoted, with the characters escaped that would end it. So a folder
/// with blanks, quotes or brackets in its name shows its pictures.
QString styleUrl(const QString &path);

} // namespace zelvaro
