#include "ui/common/command_wait.h"

#include "camera/camera_core.h"
#include "ui/common/busy_dialog.h"

#include <QPointer>

namespace zelvaro {

bool runCommands(QWidget *parent, CCameraCore *camera, const QString &text,
                 const QStringList &requests)
{
    const QPointer<CCameraCore> session(camera);
    // A batch that the library does not take ends with the signal as well.
    runBusy(parent, text, camera, &CCameraCore::signalP2PConfFinished, [&] {
        camera->issue_conf_commands(requests);
        return true;
    });
    if (session)
        QObject::disconnect(camera, &CCameraCore::signalP2PConfFinished, nullptr, nullptr);
    return !session.isNull();
}

} // namespace zelvaro
