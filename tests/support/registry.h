#pragma once

#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"

/// Registered cameras with their sessions over the scripted library, settings and an album of the
/// test's own. Pages and dialogs must be destroyed before it.
class Registry
{
public:
    Registry()
    {
        fake_cammgr::reset();
        settings().load();
        // The document folder of a test is the one of its home only where the system says so.
        settings().setAlbumPath(path("album"));
    }
    ~Registry()
    {
        endSessions();
        fake_cammgr::reset();
    }
    Registry(const Registry &) = delete;
    Registry &operator=(const Registry &) = delete;

    static CameraSettings &settings() { return CameraSettings::instance(); }
    static CCameraList &cameras() { return CCameraList::instance(); }

    QString path(const QString &name) const { return m_home.path() + "/" + name; }

    static void add(const QString &uid, const QString &name = {}, bool multiLive = false)
    {
        settings().addRecord(CAMERA_TYPE_P2P, uid, "admin", "secret", name, multiLive);
    }

    static void addMany(int count)
    {
        for (int i = 0; i < count; ++i)
            add(QString("UID-%1").arg(i, 3, 10, QChar('0')), QString("Camera %1").arg(i));
    }

    static void start()
    {
        settings().save();
        cameras().startSessions(settings());
    }

    static void endSessions()
    {
        cameras().closing();
        cameras().destroyAll();
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
