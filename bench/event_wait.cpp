#include "bench/event_wait.h"

#include <QEventLoop>
#include <QTimer>

namespace bench {

bool wait(std::chrono::milliseconds duration, const std::function<bool()> &until,
          std::chrono::milliseconds look)
{
    QEventLoop loop;
    QTimer::singleShot(duration, &loop, [&loop] { loop.exit(1); });
    QTimer looks;
    QObject::connect(&looks, &QTimer::timeout, &loop, [&] {
        if (until())
            loop.exit(0);
    });
    if (until)
        looks.start(look);
    return loop.exec() == 0;
}

} // namespace bench
