#pragma once

#include "ui/album/fitted_frame.h"

class QFrame;

/// Shows one photo as large as it fits, with its aspect ratio kept. GUI thread only.
class CPhotoFrame : public zelvaro::FittedFrame
{
    Q_OBJECT

public:
    explicit CPhotoFrame(QWidget *parent = nullptr);

    /// The file to show and its size in pixels. An empty size: unknown, the picture takes the whole
    /// frame. The picture is kept no larger than the largest screen.
    void setPhoto(const QString &file, QSize size);
    /// Lets go of the picture.
    void clear();

signals:
    /// A double click with the left button, or Escape released.
    void doubleClicked();

protected:
    void moveContent(QWidget *picture, const QRect &place) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    QFrame *m_picture;
};
