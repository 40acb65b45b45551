#pragma once

#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"
#include "tests/support/page_recorder.h"

/// Registered cameras with their sessions over the scripted library, settings and an album of the
/// test's own, and a main window that records what is requested.
class SessionsFixture
{
public:
    SessionsFixture()
    {
        fake_cammgr::reset();
        CameraSettings::instance().load();
        // The document folder of a test is the one of its home only where the system says so.
        CameraSettings::instance().setAlbumPath(m_home.path() + QStringLiteral("/Album"));
    }
    /// Ends the sessions. Pages and dialogs must be destroyed.
    ~SessionsFixture() { endSessions(); }
    SessionsFixture(const SessionsFixture &) = delete;
    SessionsFixture &operator=(const SessionsFixture &) = delete;

    /// Registers cameras named "Camera A" and so on, with these host names, and starts them.
    static void addCameras(const QStringList &hostnames, bool multiLive = true)
    {
        CameraSettings &settings = CameraSettings::instance();
        for (const QString &hostname : hostnames) {
            settings.addRecord(CAMERA_TYPE_P2P, hostname, QStringLiteral("admin"),
                               QStringLiteral("secret"), QStringLiteral("Camera ") + hostname,
                               multiLive);
        }
        CCameraList::instance().startSessions(settings);
    }

    PageRecorder host;

protected:
    static void endSessions()
    {
        CCameraList::instance().closing();
        CCameraList::instance().destroyAll();
    }

private:
    SettingsHome m_home;
};
