#include "app/album_folder.h"

#include <QFileInfo>
#include <QTemporaryFile>

namespace zelvaro {

bool canBeWritten(const QString &folder)
{
    QFileInfo place(folder);
    while (!place.exists() && place.path() != place.filePath())
        place.setFile(place.path());
    QTemporaryFile trial(place.filePath() + QStringLiteral("/.zelvaro-XXXXXX"));
    return place.isDir() && trial.open();
}

} // namespace zelvaro
