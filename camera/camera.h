#pragma once

#include "camera/camera_core.h"

/// The session of one registered camera, with its thumbnail in the album.
class CCamera : public CCameraCore
{
    Q_OBJECT

public:
    explicit CCamera(QWidget *parent = nullptr);

    /// "thumb.jpeg" in the camera's folder of the album.
    QString thumb_path() const;
    bool has_thumb() const;
    /// Makes the camera's folder if need be, writes the picture on the screen into the thumbnail
    /// and emits signalThumbChanged, also when there was no picture. @return 1
    int take_thumb();

signals:
    /// There may be another thumbnail: it was taken, or the album is another folder now.
    void signalThumbChanged();
};
