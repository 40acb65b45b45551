#pragma once

#include <QString>

namespace zelvaro {

/// Whether photos and recordings can be written into a folder, which need not exist: then it is
/// the nearest folder above it that counts. Tries it with a file of no content, which is removed.
[[nodiscard]] bool canBeWritten(const QString &folder);

} // namespace zelvaro
