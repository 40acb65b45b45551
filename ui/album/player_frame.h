#pragma once

#include "ui/common/escape_key.h"

#include <QSize>
#include <QWidget>

namespace zelvaro {

/// The surface that contains a video player: black, and filled by the player as far as the video's
/// ratio lets it, also when the surface goes to the full screen and back. GUI thread only.
class PlayerFrame : public QWidget
{
    Q_OBJECT

public:
    explicit PlayerFrame(QWidget *parent = nullptr);

    /// Becomes a child of the surface.
    void setPlayer(QWidget *player);
    /// The player keeps the ratio of that size. Empty: unknown, it takes the whole surface.
    void setVideoSize(QSize size);

signals:
    /// Escape was pressed and released.
    void escaped();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void placePlayer();

    QWidget *m_player = nullptr;
    QSize m_videoSize;
    EscapeKey m_escape;
};

} // namespace zelvaro
