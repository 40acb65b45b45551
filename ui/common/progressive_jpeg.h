#pragma once

#include <QString>

namespace zelvaro {

/// Whether the file is a JPEG in several scans (ITU-T T.81, B.1.1.3: a frame header SOF2, SOF6,
/// SOF10 or SOF14). A decoder holds all coefficients of such a picture, however small it is shown:
/// 300 MB for one of 100 megapixels. False for anything that is no JPEG. Reads headers only.
bool isProgressiveJpeg(const QString &file);

} // namespace zelvaro
