#pragma once

#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"

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

    /// The content of the settings file.
    QByteArray file() const { return m_home.read(); }

private:
    SettingsHome m_home;
};
