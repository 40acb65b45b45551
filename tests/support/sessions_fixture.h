#pragma once

#include "tests/support/page_recorder.h"
#include "tests/support/registry.h"

/// Registered cameras, and a main window that records what is requested.
class SessionsFixture
{
public:
    /// Registers cameras named "Camera A" and so on, with these host names, and starts them.
    static void addCameras(const QStringList &hostnames, bool multiLive = true)
    {
        for (const QString &hostname : hostnames)
            Registry::add(hostname, QStringLiteral("Camera ") + hostname, multiLive);
        Registry::cameras().startSessions(Registry::settings()); // nothing is saved
    }

    PageRecorder host;

protected:
    /// Pages and dialogs must be destroyed.
    static void endSessions() { Registry::endSessions(); }

private:
    Registry m_registry; // its sessions end while there is a host
};
