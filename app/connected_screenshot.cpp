#include "app/connected_screenshot.h"

#include "app/main_form.h"
#include "camera/camera.h"
#include "camera/camera_list.h"

#include <QCoreApplication>
#include <QPixmap>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <cstdio>

namespace zelvaro {

namespace {

constexpr int lookEvery = 100;   // milliseconds
constexpr int patience = 60'000; // milliseconds until the picture must be taken
constexpr int timeToPaint = 500; // milliseconds for the window system to draw the last change

bool allConnected()
{
    const CCameraList &cameras = CCameraList::instance();
    for (int i = 0; i < cameras.count(); ++i)
        if (cameras.at(i)->get_state() != CAMERA_STATE_CONNECTED)
            return false;
    return true;
}

} // namespace

void ConnectedScreenshot::schedule(CMainForm &window, const QString &file, const QString &page)
{
    new ConnectedScreenshot(window, file, page);
}

ConnectedScreenshot::ConnectedScreenshot(CMainForm &window, const QString &file,
                                         const QString &page)
    : QObject(&window)
    , m_window(window)
    , m_file(file)
    , m_steps(screenshotSteps(window, page))
{
    connect(&m_look, &QTimer::timeout, this, &ConnectedScreenshot::look);
    connect(&m_deadline, &QTimer::timeout, this, [this] {
        end(QStringLiteral("the cameras did not connect, or show anything, in time"));
    });
    m_deadline.setSingleShot(true);
    m_deadline.start(patience);
    m_look.start(lookEvery);
}

void ConnectedScreenshot::look()
{
    const QWindow *native = m_window.windowHandle();
    if (native == nullptr || !native->isExposed() || !allConnected())
        return;
    if (!isArranged())
        return;
    m_look.stop();
    QTimer::singleShot(timeToPaint, this, &ConnectedScreenshot::save);
}

// An act may open a dialog that waits: then this is called again before the act has returned.
bool ConnectedScreenshot::isArranged()
{
    if (m_step == m_steps.size())
        return true;
    if (!m_acted) {
        m_acted = true;
        m_steps[m_step].act();
    } else if (m_steps[m_step].done()) {
        ++m_step;
        m_acted = false;
    }
    return m_step == m_steps.size();
}

// From the screen: the window's own drawing would lack what the stream library drew.
void ConnectedScreenshot::save()
{
    const QPixmap picture = m_window.screen()->grabWindow(m_window.winId());
    end(picture.save(m_file, "PNG") ? QString()
                                    : QStringLiteral("%1 could not be written").arg(m_file));
}

void ConnectedScreenshot::end(const QString &problem)
{
    m_look.stop();
    m_deadline.stop();
    if (!problem.isEmpty())
        std::fprintf(stderr, "zelvaro: no screenshot: %s\n", qPrintable(problem));
    QCoreApplication::exit(problem.isEmpty() ? 0 : 1);
}

} // namespace zelvaro
