#include "ui/common/picture_layout.h"

#include <algorithm>
#include <array>

namespace zelvaro {

namespace {

constexpr std::array ladder{800, 600, 500, 400, 300, 200, 150, 125,
                            100, 75,  60,  50,  40,  25,  20,  10};

// What stays free around the picture, for its border and for the strip under it.
constexpr int freeSide = 15;
constexpr int freeBelow = 33;

constexpr int borderLeft = 6;
constexpr int borderTop = 5;
constexpr int borderRight = 7;
constexpr int borderBelow = 26;

// A picture is shown one step larger while zoom times side, which is 100 times the pixels shown, is
// not above this.
constexpr qint64 tinySide = 9999;

// Larger than any widget. A picture a thousand times as high as it is wide, in an area that is
// smaller than its margins, comes out beyond what a coordinate holds.
constexpr qint64 coordinateLimit = 1 << 24;

int toCoordinate(qint64 value)
{
    return static_cast<int>(std::clamp(value, -coordinateLimit, coordinateLimit));
}

qint64 scaled(int zoom, int side)
{
    return static_cast<qint64>(zoom) * side / 100;
}

QRect centred(const QRect &box, qint64 width, qint64 height)
{
    return {box.left() + toCoordinate((box.width() - width) / 2),
            box.top() + toCoordinate((box.height() - height) / 2), toCoordinate(width),
            toCoordinate(height)};
}

void fit(PictureLayout &layout, QSize picture)
{
    const QRect &box = layout.clientRect;
    const qint64 sourceWidth = picture.width();
    const qint64 sourceHeight = picture.height();
    layout.fitted = true;
    layout.sourceRatio = static_cast<double>(sourceWidth) / static_cast<double>(sourceHeight);
    layout.areaRatio = static_cast<double>(box.width()) / static_cast<double>(box.height());

    qint64 width = box.width();
    qint64 height = box.height();
    if (layout.sourceRatio > layout.areaRatio)
        height = sourceHeight * width / sourceWidth;
    else
        width = sourceWidth * height / sourceHeight;
    layout.videoRect = centred(box, width, height);
    layout.zoom = toCoordinate(width * 100 / sourceWidth);
}

} // namespace

int zoomedIn(int zoom)
{
    const auto step =
        std::find_if(ladder.begin() + 1, ladder.end(), [zoom](int entry) { return entry <= zoom; });
    return step == ladder.end() ? zoom : *(step - 1);
}

int zoomedOut(int zoom)
{
    const auto last = ladder.end() - 1;
    const auto step =
        std::find_if(ladder.begin(), last, [zoom](int entry) { return entry <= zoom; });
    if (step == last)
        return zoom < *last ? zoom : *last;
    return *step == zoom ? *(step + 1) : *step;
}

PictureLayout layoutPicture(QSize area, QSize picture, int zoom)
{
    PictureLayout layout;
    layout.zoom = zoom;
    layout.clientRect.setCoords(freeSide, freeSide, area.width() - 1 - freeSide,
                                area.height() - 1 - freeBelow);
    layout.hasPicture = picture.width() > 0 && picture.height() > 0;

    if (!layout.hasPicture) {
        layout.videoRect = layout.clientRect;
    } else if (scaled(zoom, picture.width()) > layout.clientRect.width() ||
               scaled(zoom, picture.height()) > layout.clientRect.height()) {
        fit(layout, picture);
    } else {
        const qint64 shorter = std::min(picture.width(), picture.height());
        if (zoom * shorter <= tinySide)
            layout.zoom = zoomedIn(zoom);
        layout.videoRect = centred(layout.clientRect, scaled(layout.zoom, picture.width()),
                                   scaled(layout.zoom, picture.height()));
    }

    layout.frameRect = layout.videoRect.adjusted(-borderLeft, -borderTop, borderRight, borderBelow);
    return layout;
}

QRect fittedRect(QSize area, QSize picture)
{
    QRect rect({0, 0}, picture.isEmpty() ? area : picture.scaled(area, Qt::KeepAspectRatio));
    rect.moveTopLeft({(area.width() - rect.width()) / 2, (area.height() - rect.height()) / 2});
    return rect;
}

} // namespace zelvaro
