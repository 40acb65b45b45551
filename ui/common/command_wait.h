#pragma once

#include <QString>
#include <QStringList>

class CCameraCore;
class QWidget;

namespace zelvaro {

/// Sends a batch of command requests through the session and waits for its end behind the modal
/// wait dialog; afterwards the session holds the results. The wait disconnects every receiver of
/// the session's signalP2PConfFinished. @return false when the session was destroyed meanwhile.
/// GUI thread only.
bool runCommands(QWidget *parent, CCameraCore *camera, const QString &text,
                 const QStringList &requests);

} // namespace zelvaro
