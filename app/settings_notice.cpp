#include "app/settings_notice.h"

#include <QCoreApplication>
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

} // namespace

QString settingsNotice(const CameraSettings &settings)
{
    QStringList texts;
    for (const Wording &wording : wordings) {
        if (settings.fileTroubles().testFlag(wording.trouble))
            texts << QCoreApplication::translate("SettingsNotice", wording.text)
                         .arg(settings.configFile());
    }
    return texts.join(QLatin1Char(' '));
}

} // namespace zelvaro
