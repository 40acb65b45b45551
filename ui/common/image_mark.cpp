#include "ui/common/image_mark.h"

#include <QHelpEvent>
#include <QToolTip>

namespace zelvaro {

bool ImageMark::event(QEvent *event)
{
    if (event->type() != QEvent::ToolTip || toolTip().isEmpty() || !parentWidget())
        return QLabel::event(event);
    QToolTip::showText(static_cast<QHelpEvent *>(event)->globalPos(), toolTip(), parentWidget(),
                       geometry());
    return true;
}

} // namespace zelvaro
