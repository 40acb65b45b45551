#pragma once

#include <QByteArray>
#include <QString>

#include <cstring>

/// Texts of the discovery library's records. A library that says so by its optional function
/// ndcp_takes_utf8() gives and takes UTF-8. Another maker's gives them in the local code page and
/// takes Latin-1; a text that is edited is read as Latin-1 then, so that it is sent back as it
/// came.

namespace zelvaro {

/// Bytes of a text field up to its NUL, or all of it where there is none.
template <std::size_t N>
QByteArray fieldBytes(const char (&field)[N])
{
    return QByteArray(field, static_cast<int>(strnlen(field, N)));
}

QString shownText(const QByteArray &bytes);
QString editableText(const QByteArray &bytes);
/// At most that many bytes, cut between two characters.
QByteArray storedText(const QString &text, int mostBytes);
/// Whether the library can be given every character of the text.
bool canBeStored(const QString &text);

/// Text of a field as lists show it.
template <std::size_t N>
QString fieldText(const char (&field)[N])
{
    return shownText(fieldBytes(field));
}

/// Text of a field as an edit shows it.
template <std::size_t N>
QString fieldEditText(const char (&field)[N])
{
    return editableText(fieldBytes(field));
}

/// Stores a text, cut so that a NUL follows it inside the field; the rest is zeroed.
template <std::size_t N>
void storeField(char (&field)[N], const QString &text)
{
    const QByteArray bytes = storedText(text, static_cast<int>(N) - 1);
    std::memset(field, 0, N);
    std::memcpy(field, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

} // namespace zelvaro
