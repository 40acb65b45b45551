#include "ui/album/player_frame.h"

#include "ui/common/picture_layout.h"

#include <QKeyEvent>

namespace zelvaro {

PlayerFrame::PlayerFrame(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
}

void PlayerFrame::setPlayer(QWidget *player)
{
    m_player = player;
    m_player->setParent(this);
    placePlayer();
    m_player->show();
}

void PlayerFrame::setVideoSize(QSize size)
{
    m_videoSize = size;
    placePlayer();
}

void PlayerFrame::placePlayer()
{
    if (m_player)
        m_player->setGeometry(fittedRect(QWidget::size(), m_videoSize));
}

void PlayerFrame::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placePlayer();
}

void PlayerFrame::keyPressEvent(QKeyEvent *event)
{
    if (!m_escape.press(*event))
        QWidget::keyPressEvent(event);
}

void PlayerFrame::keyReleaseEvent(QKeyEvent *event)
{
    if (m_escape.release(*event))
        emit escaped();
    else
        QWidget::keyReleaseEvent(event);
}

void PlayerFrame::focusOutEvent(QFocusEvent *event)
{
    m_escape.focusLost();
    QWidget::focusOutEvent(event);
}

} // namespace zelvaro
