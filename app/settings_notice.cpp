#include "app/settings_notice.h"

#include <QCoreApplication>
#include <QDir>
#include <QStringList>

namespace zelvaro {

namespace {

struct Wording
{
    CameraSettings::FileTrouble trouble;
    const char *text;
};

constexpr Wording wordings[] = {
    {CameraSettings::NotRead,
     QT_TRANSLATE_NOOP("SettingsNotice", "%1 cannot be read: its cameras are missing here.")},
    {CameraSettings::CamerasNotLoaded,
     QT_TRANSLATE_NOOP("SettingsNotice",
                       "%1 has a gap in its numbers: the cameras after it are missing here.")},
    {CameraSettings::NotWritten,
     QT_TRANSLATE_NOOP("SettingsNotice", "Changes cannot be saved in %1.")},
    {CameraSettings::TextsNotKept,
     QT_TRANSLATE_NOOP("SettingsNotice", "Some texts cannot be saved whole in %1.")},
};

// The row is short: a file of the user's is named as in a shell.
QString shownPath(const QString &file)
{
#ifdef Q_OS_UNIX
    const QString home = QDir::homePath();
    if (file.startsWith(home + QLatin1Char('/')))
        return QLatin1Char('~') + file.mid(home.size());
#endif
    return file;
}

} // namespace

QString settingsNotice(const CameraSettings &settings)
{
    QStringList texts;
    for (const Wording &wording : wordings) {
        if (settings.fileTroubles().testFlag(wording.trouble))
            texts << QCoreApplication::translate("SettingsNotice", wording.text)
                         .arg(shownPath(settings.configFile()));
    }
    return texts.join(QLatin1Char(' '));
}

} // namespace zelvaro
