#pragma once

#include <QWidget>

namespace zelvaro {

/// The surface that a video player stands in: black, and filled by the player, which keeps its
/// place there when the surface goes to the full screen and back. GUI thread only.
class PlayerFrame : public QWidget
{
    Q_OBJECT

public:
    explicit PlayerFrame(QWidget *parent = nullptr);

    /// The widget that fills the surface; becomes its child.
    void setPlayer(QWidget *player);

signals:
    /// Escape was released.
    void escaped();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;

private:
    QWidget *m_player = nullptr;
};

} // namespace zelvaro
