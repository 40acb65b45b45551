#include "ui/common/busy_dialog.h"

#include <QCloseEvent>

namespace zelvaro {

BusyDialog::BusyDialog(const QString &text, QWidget *parent)
    : QProgressDialog(text, QString(), 0, 0, parent, Qt::FramelessWindowHint | Qt::Dialog)
{
    setCancelButton(nullptr);
    setModal(true);
    // Shown by exec() at once: no timer of the dialog's own may show it again after it was closed.
    setMinimumDuration(0);
}

void BusyDialog::closeEvent(QCloseEvent *event)
{
    event->ignore();
}

} // namespace zelvaro
