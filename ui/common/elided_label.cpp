#include "ui/common/elided_label.h"

#include "ui/common/tool_tip.h"

#include <QHelpEvent>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>
#include <QToolTip>

namespace zelvaro {

ElidedLabel::ElidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

bool ElidedLabel::event(QEvent *event)
{
    const bool isCut = fontMetrics().horizontalAdvance(text()) > contentsRect().width();
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty() || !isCut)
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), plainToolTip(text()), this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QStylePainter painter(this);
    drawFrame(&painter);
    QStyleOption option;
    option.initFrom(this);
    const QRect place = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, place.width());
    painter.drawItemText(place, int(alignment()), option.palette, isEnabled(), shown,
                         foregroundRole());
}

} // namespace zelvaro
