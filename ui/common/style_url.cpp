#include "ui/common/style_url.h"

#include <algorithm>

namespace zelvaro {

namespace {

// A safe part of what the style-sheet scanner takes in an address without quotes.
bool isBare(QChar c)
{
    static const QString marks = QStringLiteral("-./:_~+,=@");
    const ushort code = c.unicode();
    return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
           (code >= 'a' && code <= 'z') || marks.contains(c);
}

QString escaped(QChar c)
{
    switch (c.unicode()) {
    case '\\':
        // The scanner turns hexadecimal escapes into characters before it looks at backslashes, so
        // "\\41" would become "\A". Two backslashes written by their numbers survive that, and make
        // one in the end.
        return QStringLiteral("\\00005c\\00005c");
    case '"':
    case '\n':
    case '\r':
    case '\f':
        return QLatin1Char('\\') + QString(c);
    default:
        return c;
    }
}

} // namespace

QString styleUrl(const QString &path)
{
    if (std::all_of(path.begin(), path.end(), isBare))
        return path;
    QString quoted(QLatin1Char('"'));
    for (const QChar c : path)
        quoted += escaped(c);
    return quoted + QLatin1Char('"');
}

} // namespace zelvaro
