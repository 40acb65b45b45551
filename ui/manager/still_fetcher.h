#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

class CCamera;

namespace zelvaro {

/// Keeps the pictures on the tiles of a page fresh: has the library fetch one for each connected
/// camera whose picture is missing or older than 10 minutes, two cameras at a time, while the page
/// is shown. Does nothing with a library that cannot fetch. GUI thread only; the sessions are not
/// owned.
class StillFetcher : public QObject
{
    Q_OBJECT

public:
    StillFetcher();

    /// The cameras whose tiles can be seen, in their order.
    void setCameras(const QList<CCamera *> &cameras);
    /// Whether the page is on the screen. Hidden: nothing new is asked for.
    void setShown(bool shown);

private:
    /// Asks for what is due, as far as others are not under way.
    void fetchDue();
    bool isDue(CCamera &camera) const;
    void fetch(CCamera &camera);
    void finish(CCamera &camera, bool written);

    QList<QPointer<CCamera>> m_cameras;
    QList<QPointer<CCamera>> m_underWay;
    QTimer m_look;
    bool m_shown = false;
};

} // namespace zelvaro
