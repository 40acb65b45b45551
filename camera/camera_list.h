#pragma once

#include <QObject>

#include <memory>
#include <vector>

class CCamera;
class CameraSettings;

/// Owner of the camera sessions, one for each registered camera, in the order of the records.
/// GUI thread only.
class CCameraList : public QObject
{
    Q_OBJECT

public:
    explicit CCameraList(QObject *parent = nullptr);
    ~CCameraList() override;

    /// The list of this process. Lives until the process ends.
    static CCameraList &instance();

    int count() const;
    /// Session at a zero-based index; null outside the list.
    CCamera *at(int index) const;

    /// Makes a session without a record, appends it and returns it. The list keeps it.
    CCamera *create();

    /// Takes a session out of the list and destroys it. Its player, if it has one, must have been
    /// stopped and waited for. An unknown pointer is passed over.
    void remove(CCamera *camera);

    /// Makes and starts a session for each record. One that cannot start is destroyed at once; its
    /// record stays. Existing sessions are destroyed first.
    void startSessions(const CameraSettings &settings);

    /// Destroys all sessions from the front, each with its player. Waits in event loops only for
    /// sessions that have not been through closing().
    void destroyAll();

public slots:
    /// The program is about to quit: requests every session to stop, then waits for each.
    void closing();

private:
    std::vector<std::unique_ptr<CCamera>> m_cameras;
};
