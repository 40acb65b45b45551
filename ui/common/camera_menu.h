#pragma once

#include <QCoreApplication>

class CCamera;
class QMenu;
class QWidget;

namespace zelvaro {

/// What the context menu of any picture of a camera has at its end.
class CameraMenu
{
    Q_DECLARE_TR_FUNCTIONS(CameraMenu)

public:
    /// Adds an entry that copies the text, and one that trusts the camera's new TLS key while the
    /// camera is refused because of it. The menu is shown on the widget. GUI thread only.
    static void addTo(QMenu &menu, CCamera *camera, const QString &text, QWidget *widget);

private:
    static void trust(CCamera *camera, QWidget *widget);
};

} // namespace zelvaro
