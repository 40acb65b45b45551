#include "ui/manager/still_fetcher.h"

#include "camera/camera.h"
#include "ui/common/album_files.h"

#include <QDateTime>
#include <QFileInfo>
#include <QVariant>

namespace zelvaro {

namespace {

constexpr int atATime = 2;
constexpr int freshFor = 600;      // seconds
constexpr int lookEvery = 5000;    // milliseconds
constexpr int retryAfter = 60'000; // milliseconds until a camera that gave none is asked again

// On a session: when it may be asked again, in milliseconds since the epoch.
constexpr char notBefore[] = "stillNotBefore";

} // namespace

StillFetcher::StillFetcher()
{
    m_look.setInterval(lookEvery);
    connect(&m_look, &QTimer::timeout, this, &StillFetcher::fetchDue);
}

void StillFetcher::setCameras(const QList<CCamera *> &cameras)
{
    for (const QPointer<CCamera> &camera : qAsConst(m_cameras))
        if (camera)
            disconnect(camera, &CCamera::signalStateChanged, this, nullptr);
    m_cameras.clear();
    for (CCamera *camera : cameras) {
        m_cameras.append(camera);
        connect(camera, &CCamera::signalStateChanged, this, &StillFetcher::fetchDue);
    }
    fetchDue();
}

void StillFetcher::setShown(bool shown)
{
    m_shown = shown;
    if (shown && CCamera::canFetchStill())
        m_look.start();
    else
        m_look.stop();
    fetchDue();
}

void StillFetcher::fetchDue()
{
    m_underWay.removeAll(nullptr);
    if (!m_shown || !CCamera::canFetchStill())
        return;
    for (const QPointer<CCamera> &camera : qAsConst(m_cameras)) {
        if (m_underWay.size() >= atATime)
            return;
        if (camera && isDue(*camera))
            fetch(*camera);
    }
}

bool StillFetcher::isDue(CCamera &camera) const
{
    if (camera.get_state() != CAMERA_STATE_CONNECTED || !camera.has_player() ||
        camera.is_stopped() || m_underWay.contains(&camera))
        return false;
    const QDateTime now = QDateTime::currentDateTime();
    if (now.toMSecsSinceEpoch() < camera.property(notBefore).toLongLong())
        return false;
    const QFileInfo picture(camera.thumb_path());
    return !picture.exists() || qAbs(picture.lastModified().secsTo(now)) > freshFor;
}

void StillFetcher::fetch(CCamera &camera)
{
    const QString path = camera.thumb_path();
    makeFolder(QFileInfo(path).path());
    camera.setProperty(notBefore, QDateTime::currentMSecsSinceEpoch() + retryAfter);
    if (camera.fetchStill(path) < 0)
        return;
    m_underWay.append(&camera);
    connect(&camera, &CCamera::signalStillFetched, this,
            [this, session = &camera](bool written) { finish(*session, written); });
}

void StillFetcher::finish(CCamera &camera, bool written)
{
    disconnect(&camera, &CCamera::signalStillFetched, this, nullptr);
    m_underWay.removeAll(&camera);
    if (written) {
        camera.setProperty(notBefore, 0);
        emit camera.signalThumbChanged();
    }
    fetchDue();
}

} // namespace zelvaro
