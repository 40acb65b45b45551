#pragma once

#include <QString>

namespace zelvaro {

/// "2 h 5 min", "12 min", "less than 1 min"
QString durationText(qint64 seconds);

} // namespace zelvaro
