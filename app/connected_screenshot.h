#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

class QWidget;

namespace zelvaro {

/// Saves a picture of the window once every camera is connected, and ends the program: exit code 0
/// when the file was written, 1 when the cameras did not connect in time or it could not be.
/// GUI thread only.
class ConnectedScreenshot : public QObject
{
    Q_OBJECT

public:
    /// The task belongs to the window.
    static void schedule(QWidget &window, const QString &file);

private:
    ConnectedScreenshot(QWidget &window, const QString &file);

    void look();
    void save();
    void end(const QString &problem);

    QWidget &m_window;
    QString m_file;
    QTimer m_look;
    QTimer m_deadline;
};

} // namespace zelvaro
