#include "ui/discovery/device_text.h"

#include "camera/library_text.h"

#include <algorithm>

namespace zelvaro {

namespace {

constexpr char takesUtf8[] = "ndcp_takes_utf8";
constexpr ushort lastOfLatin1 = 0xFF;

/// RFC 3629, section 3: all bytes of a character but its first.
bool continuesCharacter(char byte)
{
    return (static_cast<uchar>(byte) & 0xC0) == 0x80;
}

} // namespace

QString shownText(const QByteArray &bytes)
{
    return libraryTakesUtf8(takesUtf8) ? QString::fromUtf8(bytes) : QString::fromLocal8Bit(bytes);
}

QString editableText(const QByteArray &bytes)
{
    return libraryTakesUtf8(takesUtf8) ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

QByteArray storedText(const QString &text, int mostBytes)
{
    QByteArray bytes = libraryText(text, takesUtf8);
    if (bytes.size() <= mostBytes)
        return bytes;
    int end = mostBytes;
    if (libraryTakesUtf8(takesUtf8))
        while (end > 0 && continuesCharacter(bytes.at(end)))
            --end;
    bytes.truncate(end);
    return bytes;
}

bool canBeStored(const QString &text)
{
    return libraryTakesUtf8(takesUtf8) ||
           std::all_of(
               text.begin(), text.end(),
               [](QChar character) { return character.unicode() <= lastOfLatin1; });
}

} // namespace zelvaro
