#include "settings/stored_text.h"

#include "settings/ini_store.h"

namespace zelvaro {

const char *settingsKey(SettingsText which)
{
    switch (which) {
    case SettingsText::AlbumPath:
        return "ALBUMPATH";
    case SettingsText::Hostname:
        return "HOSTNAME";
    case SettingsText::Username:
        return "USERNAME";
    case SettingsText::Password:
        return "PASSWORD";
    case SettingsText::Name:
        return "NAME";
    }
    return "";
}

StoredText storedText(SettingsText which, const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    if (QString::fromLocal8Bit(bytes) != text)
        return StoredText::Unencodable;
    return ini_pair_length(settingsKey(which), bytes.constData()) > INI_LINE ? StoredText::TooLong
                                                                             : StoredText::Whole;
}

} // namespace zelvaro
