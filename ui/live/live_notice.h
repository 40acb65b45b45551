#pragma once

#include "ui/live/picture_overlay.h"
#include "ui/live/picture_watch.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class CCamera;
class CVideoFrame;

namespace zelvaro {

/// Keeps a live picture honest by what lies over it: a picture older than 5 s is dimmed and says
/// since when; in full screen, where the page with its texts is not seen, there are also the
/// camera's name for a while, the time of a picture older than 2 s, and the record mark. Has a
/// clock of its own, because the reports of a camera that is silent come late. GUI thread only.
class LiveNotice : public QObject
{
    Q_OBJECT

public:
    LiveNotice(CVideoFrame *surface, Clock clock);

    /// A stream begins; null: it ends. The camera is not owned.
    void follow(CCamera *camera);
    void setFullScreen(bool fullScreen);
    /// asked: the user wants a recording. written: there is one.
    void setRecording(bool asked, bool written);
    /// Shows what is so now.
    void renew();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    OverlayContent content() const;

    QPointer<CVideoFrame> m_surface;
    QPointer<CCamera> m_camera;
    PictureWatch m_watch;
    QTimer m_second;
    QElapsedTimer m_sincePointer; // the pointer has moved, or the full screen begun
    bool m_fullScreen = false;
    bool m_recordingAsked = false;
    bool m_recordingWritten = false;
};

} // namespace zelvaro
