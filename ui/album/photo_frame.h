#pragma once

#include "ui/common/escape_key.h"

#include <QRect>
#include <QSize>
#include <QWidget>

class QFrame;

/// Shows one photo as large as it fits, with its aspect ratio kept. GUI thread only.
class CPhotoFrame : public QWidget
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
    /// A double click with the left button, or Escape pressed and released.
    void doubleClicked();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void placePicture();

    QFrame *m_picture;
    QSize m_size;
    zelvaro::EscapeKey m_escape;
};
