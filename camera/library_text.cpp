#include "camera/library_text.h"

#include "camera/loaded_symbol.h"

namespace zelvaro {

bool libraryTakesUtf8(const char *takesUtf8)
{
    const auto answer = reinterpret_cast<int (*)()>(loadedSymbol(takesUtf8));
    return answer && answer();
}

QByteArray libraryText(const QString &text, const char *takesUtf8)
{
    return libraryTakesUtf8(takesUtf8) ? text.toUtf8() : text.toLatin1();
}

} // namespace zelvaro
