#pragma once

#include <QPointer>
#include <QProgressDialog>

#include <functional>

namespace zelvaro {

/// The modal, frameless "please wait" dialog: a busy indicator without a cancel button, which only
/// cancel() closes; Escape and the window's close button do not. GUI thread only.
class BusyDialog : public QProgressDialog
{
    Q_OBJECT

public:
    BusyDialog(const QString &text, QWidget *parent);

    void reject() override {}

protected:
    void closeEvent(QCloseEvent *event) override;
};

/// Use this for every request the user has to wait for, when a signal reports its end: shows the
/// dialog, runs start, and returns when the signal came. The signal must come through the event
/// loop, so that it cannot come before the dialog runs. When start gives false nothing is waited
/// for. A sender that is destroyed ends the wait as well.
/// @return what start gave.
template <typename Sender, typename Signal>
bool runBusy(QWidget *parent, const QString &text, Sender *sender, Signal finished,
             const std::function<bool()> &start)
{
    // The parent may go while its dialog waits, and takes it along.
    const QPointer<BusyDialog> dialog = new BusyDialog(text, parent);
    QObject::connect(sender, finished, dialog, &QProgressDialog::cancel);
    QObject::connect(sender, &QObject::destroyed, dialog, &QProgressDialog::cancel);
    const bool started = start();
    if (started)
        dialog->exec();
    if (dialog)
        dialog->deleteLater();
    return started;
}

} // namespace zelvaro
