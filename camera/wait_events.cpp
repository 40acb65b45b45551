#include "camera/wait_events.h"

#include <QEventLoop>
#include <QTimer>

namespace zelvaro {

void waitEvents(int milliseconds)
{
    QTimer timer;
    timer.setSingleShot(true);
    timer.start(milliseconds);
    QEventLoop loop;
    while (timer.isActive())
        loop.processEvents(QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents);
}

} // namespace zelvaro
