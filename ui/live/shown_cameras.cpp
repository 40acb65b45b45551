#include "ui/live/shown_cameras.h"

namespace zelvaro {

QList<CCamera *> &shownCameras()
{
    static QList<CCamera *> cameras;
    return cameras;
}

} // namespace zelvaro
