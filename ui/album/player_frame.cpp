#include "ui/album/player_frame.h"

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
    m_player->setGeometry(rect());
    m_player->show();
}

void PlayerFrame::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (m_player)
        m_player->setGeometry(rect());
}

void PlayerFrame::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && !event->isAutoRepeat())
        emit escaped();
    else
        QWidget::keyReleaseEvent(event);
}

} // namespace zelvaro
