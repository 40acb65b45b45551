#pragma once

#include <QByteArray>
#include <QString>

namespace zelvaro {

/// Whether a platform library says that its texts are UTF-8.
/// @param takesUtf8 name of the library's optional function `int name(void)` that says so, such as
/// "cammgr_takes_utf8"; looked up at each call, because a library of another maker may lack it.
/// Any thread.
[[nodiscard]] bool libraryTakesUtf8(const char *takesUtf8);

/// A text as a platform library takes it: UTF-8 for a library that says so, else Latin-1, in which
/// characters beyond it become question marks.
/// Any thread.
[[nodiscard]] QByteArray libraryText(const QString &text, const char *takesUtf8);

} // namespace zelvaro
