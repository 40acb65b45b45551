#pragma once

#include <QRect>
#include <QSize>

/// The place of a picture in the area of a page that shows it, and the ladder of zoom steps.
/// Pure arithmetic: live views, photo viewer and video player share it.

namespace zelvaro {

/// Zoom in percent of the picture's own size that every picture starts at.
constexpr int naturalZoom = 100;

/// One step up the ladder 10, 20, 25, 40 ... 800 percent; a zoom between two steps becomes the one
/// above it. 800 stays, and so does anything below 10.
int zoomedIn(int zoom);
/// One step down; a zoom between two steps becomes the one below it. 10 and less stay.
int zoomedOut(int zoom);

/// Result of layoutPicture. Rectangles have inclusive corners, in pixels of the area.
struct PictureLayout
{
    int zoom = naturalZoom; ///< percent; differs from the requested one when the picture was fitted
    QRect clientRect;       ///< what the area offers to a picture
    QRect videoRect;        ///< the picture itself
    QRect frameRect;        ///< the picture with its border and the strip under it

    bool hasPicture = false; ///< false: there was none, videoRect is the whole clientRect
    bool fitted = false;     ///< the picture did not fit at the requested zoom
    double sourceRatio = 0;  ///< width by height of the picture and of the area, if fitted
    double areaRatio = 0;
};

/// Lays a picture out: centred at its zoom when it fits, one step larger when it would be less than
/// about 100 pixels wide or high, and shrunk to the area, with its aspect ratio kept, when it does
/// not fit.
/// @param area    size of the area
/// @param picture size of the picture; with a width or height below 1 there is no picture
/// @param zoom    percent
PictureLayout layoutPicture(QSize area, QSize picture, int zoom);

/// The largest place in the middle of an area that has the ratio of the picture: the full width for
/// one that is relatively wider, else the full height. The whole area for an empty picture.
QRect fittedRect(QSize area, QSize picture);

} // namespace zelvaro
