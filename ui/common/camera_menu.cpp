#include "ui/common/camera_menu.h"

#include "camera/camera.h"
#include "ui/common/message_box.h"
#include "ui/common/page_host.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>

namespace zelvaro {

void CameraMenu::addTo(QMenu &menu, CCamera *camera, const QString &text, QWidget *widget)
{
    menu.addSeparator();
    menu.addAction(tr("Copy as text"), [text] { QGuiApplication::clipboard()->setText(text); });
    if (camera && camera->reason().value == CAMMGR_REASON_KEY_CHANGED) {
        menu.addAction(
            tr("Trust the new key..."),
            [camera = QPointer<CCamera>(camera), widget = QPointer<QWidget>(widget)] {
                if (camera && widget)
                    trust(camera, widget);
            });
    }
}

void CameraMenu::trust(CCamera *camera, QWidget *widget)
{
    const QPointer<CCamera> asked = camera;
    CMessageBox question(CMessageBox::Warning, tr("Warning"),
                         tr("Trust the new key of \"%1\"? Do it only when you have reset or "
                            "replaced the camera.")
                             .arg(camera->name()),
                         QMessageBox::Ok | QMessageBox::Cancel,
                         widget->isWindow() ? widget : dialogParent(widget));
    if (question.exec() != QDialog::Accepted || !asked)
        return;
    asked->trustKey();
    asked->tick_alive();
}

} // namespace zelvaro
