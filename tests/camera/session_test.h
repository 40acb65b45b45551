#pragma once

#include "camera/camera.h"
#include "settings/camera_record.h"
#include "tests/camera/check_log.h"
#include "tests/fakes/fake_cammgr.h"

#include <QtTest>

#include <memory>

constexpr int deadline = 30000; // ms

/// A session with its record over the scripted library. The session is put to its end in order when
/// this is destroyed.
struct Session
{
    Session()
    {
        record.hostname = QStringLiteral("ZLV-1");
        record.username = QStringLiteral("admin");
        record.password = QStringLiteral("secret");
        record.name = QStringLiteral("Door");
        camera = std::make_unique<CCamera>();
        camera->set_info(&record);
    }
    ~Session() { end(); }

    CCamera *operator->() const { return camera.get(); }
    std::shared_ptr<fake_cammgr::Player> player() const
    {
        return fake_cammgr::player(record.hostname.toStdString());
    }

    /// Started, with the first probe still out.
    void start() const { QCOMPARE(camera->create(), 0); }
    void startConnected() const
    {
        start();
        player()->probeOk();
        QTRY_COMPARE_WITH_TIMEOUT(camera->get_state(), int(CAMERA_STATE_CONNECTED), deadline);
    }
    void stopAndWait() const
    {
        camera->stop();
        camera->wait_stopped();
    }
    void end()
    {
        if (!camera)
            return;
        if (camera->has_player() && !camera->is_stopped())
            stopAndWait();
        camera.reset();
    }

    CameraRecord record;
    std::unique_ptr<CCamera> camera;
};

/// Names of the calls of a player since they were forgotten.
inline QStringList names(const std::vector<fake_cammgr::Call> &calls)
{
    QStringList list;
    for (const fake_cammgr::Call &call : calls)
        list << QString::fromStdString(call.name);
    return list;
}

/// Lets every message of the library, and what it set going, come to the session.
inline void deliverAll()
{
    QVERIFY(fake_cammgr::waitDelivered(deadline));
    QCoreApplication::sendPostedEvents();
}
