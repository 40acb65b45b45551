#include "ui/common/title_widget.h"

#include <QMouseEvent>

CTitleWidget::CTitleWidget(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    // A dialog's spare height belongs to its contents.
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void CTitleWidget::attach(QWidget *window, bool movable)
{
    m_target = window;
    m_movable = movable;
}

void CTitleWidget::setMovable(bool movable)
{
    m_movable = movable;
}

void CTitleWidget::mousePressEvent(QMouseEvent *event)
{
    if (!canMove() || event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    recordStart(event->globalPos());
    event->accept();
}

void CTitleWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!canMove() || !(event->buttons() & Qt::LeftButton)) {
        QWidget::mouseMoveEvent(event);
        return;
    }
    if (m_pressOffset.isNull())
        recordStart(event->globalPos());

    QPoint position = m_windowPosition + event->globalPos() - m_pressOffset;
    if (position.x() < 1)
        position.setX(0);
    if (position.y() < 1)
        position.setY(0);
    m_target->move(position);
    emit signalSetMoveRect(m_target->geometry());
}

void CTitleWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (!canMove() || event->button() != Qt::LeftButton) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    // The vertical part stays: a move without a press starts over only when both parts are zero.
    m_pressOffset.setX(0);
    event->accept();
}

void CTitleWidget::recordStart(const QPoint &globalPos)
{
    m_windowPosition = m_target->pos();
    m_pressOffset = globalPos - rect().topLeft();
}
