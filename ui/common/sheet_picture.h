#pragma once

#include <QSize>
#include <QString>

class QWidget;

namespace zelvaro {

/// Size in pixels of a picture file, from its header; empty when it is no picture.
QSize pictureSize(const QString &file);

enum class PictureLook
{
    Plain,
    Dimmed
};

/// Sets the sheet, which names the file, and lets the widget take the picture decoded no larger
/// than it is shown: left alone, a style sheet decodes and keeps it at its full size, 8 MB for a
/// photo of 1080 lines. A file that is no picture, or too large to decode in good time, leaves the
/// widget without one. GUI thread only; takes as long as one decoding.
/// @param shown size to decode for, in device pixels; the picture is decoded to cover it
/// @param look of a picture that is no longer so: dimmed
void setPictureSheet(QWidget *widget, const QString &sheet, const QString &file, QSize shown,
                     PictureLook look = PictureLook::Plain);

} // namespace zelvaro
