#include "ui/common/time_text.h"

#include <QLocale>

namespace zelvaro {

QString timeText(const QDateTime &time, const QDateTime &now)
{
    const QString clock = time.toString(QStringLiteral("HH:mm:ss"));
    if (time.date() == now.date())
        return clock;
    return QLocale().toString(time.date(), QLocale::ShortFormat) + QLatin1Char(' ') + clock;
}

} // namespace zelvaro
