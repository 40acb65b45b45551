#include "ui/common/status_text.h"

namespace zelvaro {

QString sizeText(QSize picture)
{
    return QString::asprintf("%dx%d", picture.width(), picture.height());
}

QString scaledSizeText(QSize picture, int shownWidth)
{
    const qint64 scale =
        picture.width() > 0 ? static_cast<qint64>(shownWidth) * 100 / picture.width() : 0;
    return QString::asprintf("%dx%d(%d%c)", picture.width(), picture.height(),
                             static_cast<int>(scale), '%');
}

QString rateText(int frameRate, int bitRate)
{
    if (bitRate <= 999)
        return QString::asprintf("%dFPS %dbps", frameRate, bitRate);
    if (bitRate > 999999) {
        return QString::asprintf("%dFPS %d.%02dMbps", frameRate, bitRate / 1000000,
                                 bitRate % 1000000 / 10000);
    }
    return QString::asprintf("%dFPS %d.%02dKbps", frameRate, bitRate / 1000, bitRate % 1000 / 10);
}

} // namespace zelvaro
