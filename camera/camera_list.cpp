#include "camera/camera_list.h"

#include "camera/camera.h"
#include "settings/camera_settings.h"

#include <QPointer>

#include <algorithm>

CCameraList::CCameraList(QObject *parent) : QObject(parent) {}

CCameraList::~CCameraList() = default;

CCameraList &CCameraList::instance()
{
    // Never destroyed: a session that is left over must not go after the application object.
    static CCameraList &list = *new CCameraList;
    return list;
}

int CCameraList::count() const
{
    return int(m_cameras.size());
}

CCamera *CCameraList::at(int index) const
{
    return index >= 0 && index < count() ? m_cameras[size_t(index)].get() : nullptr;
}

CCamera *CCameraList::create()
{
    m_cameras.push_back(std::make_unique<CCamera>());
    return m_cameras.back().get();
}

void CCameraList::remove(CCamera *camera)
{
    const auto same = [&](const auto &candidate) { return candidate.get() == camera; };
    const auto found = std::find_if(m_cameras.begin(), m_cameras.end(), same);
    if (found == m_cameras.end())
        return;
    // Out of the list before its destructor waits in an event loop, where others may look at it.
    const std::unique_ptr<CCamera> leaving = std::move(*found);
    m_cameras.erase(found);
}

void CCameraList::startSessions(const CameraSettings &settings)
{
    destroyAll();
    for (int i = 0; i < settings.count(); ++i) {
        CCamera *const camera = create();
        camera->set_info(settings.at(i));
        if (camera->create() < 0)
            remove(camera);
    }
}

void CCameraList::destroyAll()
{
    while (!m_cameras.empty()) {
        const std::unique_ptr<CCamera> camera = std::move(m_cameras.front());
        m_cameras.erase(m_cameras.begin());
        if (!camera->has_player())
            continue;
        // At the end of the program closing() has done this already.
        if (!camera->is_stopped()) {
            camera->stop();
            camera->wait_stopped();
        }
        camera->delete_sync();
    }
}

void CCameraList::closing()
{
    // The waits run event loops, in which a session may go.
    QVector<QPointer<CCamera>> cameras;
    for (const auto &camera : m_cameras) {
        cameras << camera.get();
        if (camera->has_player() && !camera->is_stopped())
            camera->stop();
    }
    for (const auto &camera : qAsConst(cameras))
        if (camera && camera->has_player())
            camera->wait_stopped();
}
