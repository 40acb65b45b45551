#include "ui/common/video_area_frame.h"

void CVideoAreaFrame::resizeEvent(QResizeEvent *event)
{
    QFrame::resizeEvent(event);
    emit signalResize();
}
