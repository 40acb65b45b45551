#pragma once

#include <QLabel>

namespace zelvaro {

/// A label whose style sheet is an image and names no selector. Such a sheet applies to the tool
/// tip as well, which would be drawn on the image: the tip comes up as one of the parent. GUI
/// thread only.
class ImageMark : public QLabel
{
    Q_OBJECT

public:
    using QLabel::QLabel;

protected:
    bool event(QEvent *event) override;
};

} // namespace zelvaro
