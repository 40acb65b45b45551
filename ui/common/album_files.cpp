#include "ui/common/album_files.h"

#include <QDir>

namespace zelvaro {

QDateTime localTime()
{
    return QDateTime::currentDateTime();
}

void makeFolder(const QString &folder)
{
    QDir().mkpath(folder);
}

QString timeStamp(const QDateTime &time)
{
    const QDate day = time.date();
    const QTime hour = time.time();
    return QString::asprintf("/%04d%02d%02d_%02d%02d%02d", day.year(), day.month(), day.day(),
                             hour.hour(), hour.minute(), hour.second());
}

QString photoFile(const QString &folder, const QDateTime &time)
{
    return folder + timeStamp(time) + QLatin1String(".jpg");
}

QString recordingBase(const QString &folder, const QDateTime &time)
{
    return folder + timeStamp(time);
}

QString clipFile(const QString &recordingBase)
{
    return recordingBase + QLatin1String(".mp4");
}

QString clipStill(const QString &clipFile)
{
    return clipFile + QLatin1String(".jpeg");
}

} // namespace zelvaro
