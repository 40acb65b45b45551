#include "ui/album/play_time.h"

#include <algorithm>

namespace zelvaro {

namespace {

constexpr qint64 hour = 3600; // seconds

QString clockText(qint64 seconds, bool withHours)
{
    const int minutes = static_cast<int>(seconds / 60 % 60);
    const int rest = static_cast<int>(seconds % 60);
    if (withHours)
        return QString::asprintf("%lld:%02d:%02d", seconds / hour, minutes, rest);
    return QString::asprintf("%d:%02d", minutes, rest);
}

} // namespace

QString playTimeText(qint64 elapsed, qint64 total)
{
    const qint64 whole = std::max<qint64>(total, 0) / 1000;
    const qint64 done = std::clamp<qint64>(elapsed / 1000, 0, whole);
    return clockText(done, whole >= hour) + QLatin1String(" / ") + clockText(whole, whole >= hour);
}

} // namespace zelvaro
