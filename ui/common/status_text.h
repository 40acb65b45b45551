#pragma once

#include <QSize>
#include <QString>

/// The pieces of the status lines under live pictures, photos and recordings.

namespace zelvaro {

/// Separates two pieces of a status line.
constexpr char statusGap[] = "  ";

/// "1280x720"
QString sizeText(QSize picture);
/// "1280x720(75%)": the percentage is what shownWidth pixels are of the picture's width; 0 for a
/// picture without width.
QString scaledSizeText(QSize picture, int shownWidth);
/// "25FPS 1.23Mbps". bitRate in bits per second; the fraction is cut off, not rounded.
QString rateText(int frameRate, int bitRate);

} // namespace zelvaro
