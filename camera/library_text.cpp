#include "camera/library_text.h"

#include "camera/loaded_symbol.h"

namespace zelvaro {

QByteArray libraryText(const QString &text, const char *takesUtf8)
{
    const auto answer = reinterpret_cast<int (*)()>(loadedSymbol(takesUtf8));
    return answer && answer() ? text.toUtf8() : text.toLatin1();
}

} // namespace zelvaro
