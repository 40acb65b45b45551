#pragma once

#include <QString>

namespace zelvaro {

/// The texts of the settings file.
enum class SettingsText
{
    AlbumPath,
    Hostname,
    Username,
    Password,
    Name
};

/// What the next start makes of a text that the settings file holds.
enum class StoredText
{
    Whole,
    TooLong,    ///< cut: its line is longer than the lines that are read as one
    Unencodable ///< changed: the local encoding lacks some of its characters
};

/// Key of the text in the file.
[[nodiscard]] const char *settingsKey(SettingsText which);

/// For dialogs, which refuse a text that would not come back as it was typed. Lengths are those of
/// the line in the file: key, text in the local encoding, and quotation marks where it gets them.
[[nodiscard]] StoredText storedText(SettingsText which, const QString &text);

} // namespace zelvaro
