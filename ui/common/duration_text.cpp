#include "ui/common/duration_text.h"

#include <QCoreApplication>

namespace zelvaro {

namespace {

constexpr qint64 secondsPerMinute = 60;
constexpr qint64 minutesPerHour = 60;

QString translated(const char *text)
{
    return QCoreApplication::translate("Duration", text);
}

} // namespace

QString durationText(qint64 seconds)
{
    const qint64 minutes = seconds / secondsPerMinute;
    if (minutes < 1)
        return translated(QT_TRANSLATE_NOOP("Duration", "less than 1 min"));
    if (minutes < minutesPerHour)
        return translated(QT_TRANSLATE_NOOP("Duration", "%1 min")).arg(minutes);
    return translated(QT_TRANSLATE_NOOP("Duration", "%1 h %2 min"))
        .arg(minutes / minutesPerHour)
        .arg(minutes % minutesPerHour);
}

} // namespace zelvaro
