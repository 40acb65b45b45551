#include "ui/common/progressive_jpeg.h"

#include <QFile>

namespace zelvaro {

namespace {

constexpr int mostSegments = 1000; // a photo has a dozen before its frame header

// Marker codes, the second byte behind an 0xFF.
constexpr uchar startOfImage = 0xD8;
constexpr uchar startOfScan = 0xDA;
constexpr uchar firstFrameHeader = 0xC0;
constexpr uchar lastFrameHeader = 0xCF;

/// Three codes among those of the frame headers mean tables.
bool isFrameHeader(uchar marker)
{
    return marker >= firstFrameHeader && marker <= lastFrameHeader && marker != 0xC4 &&
           marker != 0xC8 && marker != 0xCC;
}

/// The two lowest bits of a frame header: 0 and 1 sequential, 2 progressive, 3 lossless.
bool isProgressive(uchar frameHeader)
{
    return (frameHeader & 3) == 2;
}

/// 0 at the end of the file and where there is no marker.
uchar nextMarker(QFile &file)
{
    char byte = 0;
    if (!file.getChar(&byte) || static_cast<uchar>(byte) != 0xFF)
        return 0;
    while (static_cast<uchar>(byte) == 0xFF) // any number of fill bytes
        if (!file.getChar(&byte))
            return 0;
    return static_cast<uchar>(byte);
}

bool skipSegment(QFile &file)
{
    const QByteArray length = file.read(2);
    if (length.size() != 2)
        return false;
    const int bytes = static_cast<uchar>(length.at(0)) << 8 | static_cast<uchar>(length.at(1));
    return bytes >= 2 && file.seek(file.pos() + bytes - 2);
}

} // namespace

bool isProgressiveJpeg(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly) || nextMarker(file) != startOfImage)
        return false;
    for (int i = 0; i < mostSegments; ++i) {
        const uchar marker = nextMarker(file);
        if (isFrameHeader(marker))
            return isProgressive(marker);
        if (marker == 0 || marker == startOfScan || !skipSegment(file))
            return false;
    }
    return false;
}

} // namespace zelvaro
