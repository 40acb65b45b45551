#include "ui/live/snapshot_sound.h"

#include "ui/common/desktop.h"

#include <QCoreApplication>

namespace zelvaro {

void playSnapshotSound()
{
    desktop().playSound(QCoreApplication::applicationDirPath() +
                        QLatin1String("/sounds/snapshot.wav"));
}

} // namespace zelvaro
