#pragma once

#include "camera/camera.h"
#include "ui/common/album_files.h"
#include "ui/common/picture_box.h"
#include "ui/live/live_notice.h"

#include <QCoreApplication>
#include <QPointer>

#include <functional>

class CVideoFrame;
class QLabel;

namespace zelvaro {

/// The widgets in which a live view shows its picture and status. Not owned.
struct LiveWidgets
{
    QWidget *area;        ///< what the picture is fitted into
    QWidget *box;         ///< the framed picture, child of area
    CVideoFrame *surface; ///< child of box
    QLabel *status;
    QLabel *recording;     ///< shows a mark while a recording is wanted
    QLabel *recordingNote; ///< a word beside the mark while nothing is written
};

/// What is drawn on the record mark and the record button.
QString recordImage(bool recording);

/// One camera's session shown live: the single view and each tile of the grid have one. It owns
/// neither the session nor a timer: the reports of the session, which its view passes on to
/// report(), are its only clock. GUI thread only.
class LiveView
{
    Q_DECLARE_TR_FUNCTIONS(LiveView)

public:
    /// First piece of the status line.
    enum class StatusSize
    {
        Plain,  ///< "640x360"
        Scaled, ///< "640x360(100%)"
    };

    /// volume: what the session's volume is to be, 0 to 200. clock: names photos and recordings.
    LiveView(const LiveWidgets &widgets, StatusSize statusSize, std::function<int()> volume,
             Clock clock);
    /// Stops the stream: nothing may draw on a destroyed surface.
    ~LiveView() { close(); }
    LiveView(const LiveView &) = delete;
    LiveView &operator=(const LiveView &) = delete;

    CCamera *camera() const;
    /// Null: none.
    void setCamera(CCamera *camera);
    bool isPlaying() const;

    /// Gives the session a fresh surface to draw stream 0 (main) or 1 (sub) on, connects its
    /// reports to the page's slotTimer() (queued) and requests one.
    template <typename Page>
    void open(int stream, Page *page)
    {
        setUp(stream);
        QObject::disconnect(m_reports);
        m_reports = QObject::connect(m_camera.data(), &CCamera::signalStateReport, page,
                                     &Page::slotTimer, Qt::QueuedConnection);
        m_camera->tick_alive();
    }
    /// Ends the reports, stops the stream and forgets the camera. The session continues.
    void close();

    /// The session has answered a probe: follows the stream, starts it when it does not play.
    void report();
    /// The stream has begun or ended: updates the layout.
    void streamChanged();

    /// Back to the natural zoom, fitted into the area as it is now.
    void areaResized();
    void zoomIn();
    void zoomOut();
    void enterFullScreen();
    void leaveFullScreen();
    void toggleFullScreen();

    void applyVolume();
    /// What the user wants; writing begins as soon as the stream plays and continues in a new file
    /// after each interruption.
    void setRecording(bool recording);
    bool isRecording() const { return m_recording; }
    /// Saves a photo in the album; does nothing unless it plays.
    void takePhoto();

    /// The status line, and what is known beyond it: the figures of the stream, or why there is
    /// none.
    QString details() const;

private:
    void setUp(int stream);
    void followStream();
    void play();
    void calculateVideoSize();
    void resizeVideoWindow();
    void layOutStream();
    void layOut();
    void followWindow();
    void applyRecording();
    void checkWriting();
    bool isWritten() const;
    void setWritingFails(bool fails);
    void showWritten();
    void showStatus();
    void showConnecting();
    void showStatusText(const QString &text);
    QSize streamSize() const;
    QString madeFolder() const;

    LiveWidgets m_widgets;
    StatusSize m_statusSize;
    std::function<int()> m_volume;
    Clock m_clock;
    PictureBox m_box;
    LiveNotice m_notice;
    bool m_recording = false;
    bool m_writingFails = false; // although requested; the user has been informed
    QPointer<CCamera> m_camera;
    QMetaObject::Connection m_reports;
    qint32 m_thumbnailCountdown = 0; // reports until the next thumbnail
    bool m_needLayout = false;       // the stream has not been seen playing since it was requested
    bool m_reportRequested = false;  // since then, for the first picture
    QSize m_streamSize;              // as last laid out
    int m_stream = 1;
    WId m_window = 0; // that the session draws on
};

} // namespace zelvaro
