#pragma once

#include <QString>

namespace zelvaro {

/// "0:07 / 1:23": playback position and length of the recording, both in milliseconds. With hours,
/// "0:00:07 / 1:02:03", when the recording is an hour or longer. Negative times count as 0.
QString playTimeText(qint64 elapsed, qint64 total);

} // namespace zelvaro
