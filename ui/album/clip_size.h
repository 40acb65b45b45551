#pragma once

#include <QSize>
#include <QString>

namespace zelvaro {

/// Width and height of the first video track of an MP4 file, in pixels, as its sample description
/// says (ISO/IEC 14496-12, 8.5.2 and 12.1.3). Empty for anything else, also for a file that is cut
/// off before. Reads a few hundred bytes, whatever the size of the file.
QSize clipSize(const QString &file);

} // namespace zelvaro
