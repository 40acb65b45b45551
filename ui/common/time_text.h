#pragma once

#include <QDateTime>

namespace zelvaro {

/// "12:03:41", with the date before it when that is not the day of now.
QString timeText(const QDateTime &time, const QDateTime &now = QDateTime::currentDateTime());

} // namespace zelvaro
