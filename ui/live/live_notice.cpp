#include "ui/live/live_notice.h"

#include "camera/camera.h"
#include "ui/common/time_text.h"
#include "ui/live/video_frame.h"

#include <QEvent>

namespace zelvaro {

namespace {

// Milliseconds.
constexpr int interval = 1000;
constexpr int oldAge = 5000;
constexpr int clockAge = 2000;
constexpr int nameTime = 3000;

} // namespace

LiveNotice::LiveNotice(CVideoFrame *surface, Clock clock)
    : m_surface(surface)
    , m_watch(std::move(clock))
{
    m_surface->installEventFilter(this);
    m_second.setInterval(interval);
    connect(&m_second, &QTimer::timeout, this, &LiveNotice::renew);
}

void LiveNotice::follow(CCamera *camera)
{
    m_camera = camera;
    m_watch.reset();
    if (m_camera)
        m_second.start();
    else
        m_second.stop();
    renew();
}

void LiveNotice::setFullScreen(bool fullScreen)
{
    if (m_fullScreen == fullScreen)
        return;
    m_fullScreen = fullScreen;
    m_sincePointer.start();
    renew();
}

void LiveNotice::setRecording(bool asked, bool written)
{
    m_recordingAsked = asked;
    m_recordingWritten = written;
    renew();
}

void LiveNotice::renew()
{
    if (m_camera)
        m_watch.look(*m_camera);
    if (m_surface)
        m_surface->setOverlay(content());
}

OverlayContent LiveNotice::content() const
{
    OverlayContent content;
    if (!m_camera)
        return content;
    const auto last = m_watch.last();
    if (last && m_watch.age() > oldAge) {
        content.dimmed = true;
        content.notice = tr("No picture since %1").arg(timeText(*last, m_watch.now()));
    }
    if (!m_fullScreen)
        return content;
    if (!last)
        content.notice = tr("%1: no picture yet").arg(m_camera->name());
    if (last && m_watch.age() > clockAge)
        content.clock = timeText(*last, m_watch.now());
    if (content.dimmed || !m_sincePointer.hasExpired(nameTime))
        content.name = m_camera->name();
    content.recording = m_recordingAsked && m_recordingWritten;
    if (m_recordingAsked && !m_recordingWritten) {
        const QString missing = tr("not recorded");
        content.clock += content.clock.isEmpty() ? missing : QStringLiteral("  ") + missing;
    }
    return content;
}

bool LiveNotice::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseMove && m_fullScreen) {
        const bool hidden = m_sincePointer.hasExpired(nameTime);
        m_sincePointer.start();
        if (hidden)
            renew();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace zelvaro
