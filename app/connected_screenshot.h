#pragma once

#include "app/screenshot_pages.h"

#include <QObject>
#include <QString>
#include <QTimer>

class CMainForm;

namespace zelvaro {

/// Saves a picture of the window on one of its pages once every camera is connected, and ends the
/// program: exit code 0 when the file was written, 1 when the cameras did not connect or the page
/// did not show something in time, or it could not be. GUI thread only.
class ConnectedScreenshot : public QObject
{
    Q_OBJECT

public:
    /// page: see screenshotPages(); empty for the first page, as soon as the cameras are connected.
    /// The task belongs to the window.
    static void schedule(CMainForm &window, const QString &file, const QString &page = {});

private:
    ConnectedScreenshot(CMainForm &window, const QString &file, const QString &page);

    void look();
    /// Whether the page shows what it is to show.
    bool isArranged();
    void save();
    void end(const QString &problem);

    CMainForm &m_window;
    QString m_file;
    std::vector<ScreenshotStep> m_steps;
    std::size_t m_step = 0;
    bool m_acted = false; // of the current step
    QTimer m_look;
    QTimer m_deadline;
};

} // namespace zelvaro
