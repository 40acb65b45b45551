#include "ui/manager/elided_label.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace zelvaro {

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {fontMetrics().horizontalAdvance(QChar(0x2026)), QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent *event)
{
    QFrame::paintEvent(event);
    const QRect room = contentsRect();
    QPainter painter(this);
    style()->drawItemText(
        &painter, room, int(alignment()) | Qt::TextSingleLine, palette(), isEnabled(),
        fontMetrics().elidedText(text(), Qt::ElideRight, room.width()), foregroundRole());
}

bool ElidedLabel::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip &&
        fontMetrics().horizontalAdvance(text()) > contentsRect().width()) {
        QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), text().toHtmlEscaped(),
                           this);
        return true;
    }
    return QLabel::event(event);
}

} // namespace zelvaro
