#pragma once

#include <QString>
#include <QUrl>

class QWidget;

/// What the pages need of the operating system's desktop. Tests replace it by a recorder.
/// GUI thread only.
class Desktop
{
public:
    virtual ~Desktop() = default;

    /// Opens the address in the default browser. False when there is none.
    virtual bool openUrl(const QUrl &url) = 0;
    /// Plays a sound file without waiting; a missing file or sound device is passed over.
    virtual void playSound(const QString &file) = 0;
    /// Asks for a folder. Empty when the user cancelled.
    virtual QString chooseFolder(QWidget *parent, const QString &title, const QString &start) = 0;
};

/// The process-wide desktop: the system's unless a test has set another.
Desktop &desktop();
/// Null restores the system's. The caller keeps ownership.
void setDesktop(Desktop *desktop);
