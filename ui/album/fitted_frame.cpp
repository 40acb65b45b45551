#include "ui/album/fitted_frame.h"

#include "ui/common/picture_layout.h"

namespace zelvaro {

FittedFrame::FittedFrame(QWidget *parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    QPalette black = palette();
    black.setColor(QPalette::Window, Qt::black);
    setPalette(black);
    setAutoFillBackground(true);
}

void FittedFrame::setContent(QWidget *content)
{
    m_content = content;
    m_content->setParent(this);
    placeContent();
    m_content->show();
}

void FittedFrame::setContentSize(QSize size)
{
    m_contentSize = size;
    placeContent();
}

void FittedFrame::placeContent()
{
    if (!m_content)
        return;
    const QRect place = fittedRect(size(), m_contentSize);
    if (m_content->geometry() != place)
        moveContent(m_content, place);
}

void FittedFrame::moveContent(QWidget *content, const QRect &place)
{
    content->setGeometry(place);
}

void FittedFrame::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeContent();
}

void FittedFrame::keyPressEvent(QKeyEvent *event)
{
    if (!m_escape.press(*event))
        QWidget::keyPressEvent(event);
}

void FittedFrame::keyReleaseEvent(QKeyEvent *event)
{
    if (m_escape.release(*event))
        emit escaped();
    else
        QWidget::keyReleaseEvent(event);
}

void FittedFrame::focusOutEvent(QFocusEvent *event)
{
    m_escape.focusLost();
    QWidget::focusOutEvent(event);
}

} // namespace zelvaro
