#pragma once

#include "settings/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"
#include "ui/common/page_host.h"

/// A settings folder of the test's own, with sessions over the scripted camera library.
class Registry
{
public:
    Registry()
    {
        fake_cammgr::reset();
        fake_cammgr::setDefaults({});
        settings().load();
        settings().setAlbumPath(path("album"));
    }

    ~Registry()
    {
        cameras().closing();
        cameras().destroyAll();
        fake_cammgr::reset();
    }

    static CameraSettings &settings() { return CameraSettings::instance(); }
    static CCameraList &cameras() { return CCameraList::instance(); }

    QString path(const QString &name) const { return m_home.path() + "/" + name; }

    void add(const QString &uid, const QString &name = {}, bool multiLive = false)
    {
        settings().addRecord(CAMERA_TYPE_P2P, uid, "admin", "secret", name, multiLive);
    }

    void addMany(int count)
    {
        for (int i = 0; i < count; ++i)
            add(QString("UID-%1").arg(i, 3, 10, QChar('0')), QString("Camera %1").arg(i));
    }

    void start()
    {
        settings().save();
        cameras().startSessions(settings());
    }

    static QStringList uids()
    {
        QStringList result;
        for (int i = 0; i < settings().count(); ++i)
            result += settings().at(i)->hostname;
        return result;
    }

    /// What stands in the settings file.
    QByteArray file() const { return m_home.read(); }

private:
    SettingsHome m_home;
};

/// A main window that only notes what it is asked.
class HostRecorder : public PageHost
{
public:
    HostRecorder() { setPageHost(this); }
    ~HostRecorder() override { setPageHost(nullptr); }

    QWidget *dialogParent() override { return parent; }
    void leavePages() override { calls += "leavePages"; }
    void showCameraMgr() override { calls += "showCameraMgr"; }
    void showSearchCameraList() override { calls += "showSearchCameraList"; }
    void playCamera(CCamera *camera) override
    {
        calls += "playCamera";
        played = camera;
    }
    void showMultiLive() override { calls += "showMultiLive"; }
    void showPhotoMgr() override { calls += "showPhotoMgr"; }
    void backToPhotoMgr() override { calls += "backToPhotoMgr"; }
    void showPhoto(TileList *, CPhotoMgrItemForm *) override { calls += "showPhoto"; }
    void showVideoMgr() override { calls += "showVideoMgr"; }
    void backToVideoMgr() override { calls += "backToVideoMgr"; }
    void playVideo(TileList *, CPhotoMgrItemForm *) override { calls += "playVideo"; }

    QWidget *parent = nullptr;
    QStringList calls;
    CCamera *played = nullptr;
};
