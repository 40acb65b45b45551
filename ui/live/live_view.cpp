#include "ui/live/live_view.h"

#include "settings/camera_settings.h"
#include "ui/common/page_host.h"
#include "ui/common/reason_text.h"
#include "ui/common/status_text.h"
#include "ui/common/tool_tip.h"
#include "ui/live/stream_details.h"
#include "ui/live/video_frame.h"

#include <QFile>
#include <QLabel>
#include <QLoggingCategory>

namespace zelvaro {

namespace {

Q_LOGGING_CATEGORY(lcLive, "zelvaro.live")

// Reports between two thumbnails, and from the start of a stream to its first one.
constexpr int thumbnailPeriod = 60;
constexpr int firstThumbnail = 3;

} // namespace

QString recordImage(bool recording)
{
    return recording ? QStringLiteral(":/images/panelbtn/recordbtn_down.png")
                     : QStringLiteral(":/images/panelbtn/recordbtn_default.png");
}

LiveView::LiveView(const LiveWidgets &widgets, StatusSize statusSize, std::function<int()> volume,
                   Clock clock)
    : m_widgets(widgets)
    , m_statusSize(statusSize)
    , m_volume(std::move(volume))
    , m_clock(std::move(clock))
    , m_box(widgets.area, widgets.box, widgets.surface)
    , m_notice(widgets.surface, m_clock)
{
    m_widgets.recordingNote->hide();
    QObject::connect(&m_box, &PictureBox::fullScreenChanged, &m_notice, &LiveNotice::setFullScreen);
    m_box.markFocusOn(m_widgets.status->parentWidget());
}

CCamera *LiveView::camera() const
{
    return m_camera;
}

void LiveView::setCamera(CCamera *camera)
{
    m_camera = camera;
    if (m_camera)
        showConnecting();
}

bool LiveView::isPlaying() const
{
    return m_camera && m_camera->is_playing();
}

void LiveView::setUp(int stream)
{
    m_needLayout = true;
    m_reportRequested = false;
    m_stream = stream;
    QWidget *surface = m_widgets.surface->CreateRenderSurface();
    m_camera->setup_live_stream(m_stream, surface);
    m_window = surface->internalWinId();
    m_notice.follow(m_camera);
}

void LiveView::close()
{
    QObject::disconnect(m_reports);
    m_notice.follow(nullptr);
    setWritingFails(false);
    if (m_camera)
        m_camera->stop_play();
    m_camera = nullptr;
    m_window = 0;
}

void LiveView::report()
{
    if (!m_camera)
        return;
    followWindow();
    followStream();
    showWritten();
    m_notice.renew();
}

void LiveView::followStream()
{
    if (!isPlaying()) {
        showConnecting();
        m_needLayout = true;
        play();
    } else if (m_needLayout) {
        m_needLayout = false;
        m_reportRequested = false;
        streamChanged();
    } else {
        // Some cameras change their picture without a break in the stream.
        if (streamSize() != m_streamSize)
            layOutStream();
        if (m_thumbnailCountdown < 1) {
            m_camera->take_thumb();
            m_thumbnailCountdown = thumbnailPeriod;
        } else {
            --m_thumbnailCountdown;
        }
        applyVolume();
        checkWriting();
        showStatus();
    }
}

// Reports come 3 s apart: without another one the picture would move for that long before its
// layout and volume are applied. The library answers a probe sent after play when the first picture
// is shown. One probe per start, because another library may answer at once.
void LiveView::play()
{
    if (m_camera->play() < 0) {
        m_reportRequested = false;
    } else if (!m_reportRequested) {
        m_reportRequested = true;
        m_camera->tick_alive();
    }
}

void LiveView::streamChanged()
{
    if (isPlaying()) {
        applyVolume();
        applyRecording();
        m_thumbnailCountdown = firstThumbnail;
        layOutStream();
    } else {
        m_box.resetZoom();
        layOut();
    }
    showStatus();
}

void LiveView::areaResized()
{
    m_box.resetZoom();
    layOut();
}

void LiveView::zoomIn()
{
    m_box.zoomIn();
    layOut();
}

void LiveView::zoomOut()
{
    m_box.zoomOut();
    layOut();
}

void LiveView::enterFullScreen()
{
    m_box.enterFullScreen();
    followWindow();
}

void LiveView::leaveFullScreen()
{
    m_box.leaveFullScreen();
    followWindow();
}

void LiveView::toggleFullScreen()
{
    m_box.toggleFullScreen();
    followWindow();
}

void LiveView::layOutStream()
{
    m_streamSize = streamSize();
    m_widgets.surface->SetVideoSize(m_streamSize.width(), m_streamSize.height());
    m_box.resetZoom();
    calculateVideoSize();
    if (!m_box.isFullScreen())
        resizeVideoWindow();
}

void LiveView::layOut()
{
    calculateVideoSize();
    resizeVideoWindow();
}

void LiveView::calculateVideoSize()
{
    m_box.calculate(isPlaying() ? streamSize() : QSize());
    const PictureLayout &layout = m_box.layout();
    if (layout.fitted) {
        qCDebug(lcLive, "CalculateVideoSize() fSrc:%f fDest:%f\r\n", layout.sourceRatio,
                layout.areaRatio);
    }
    if (layout.hasPicture) {
        qCDebug(lcLive, "CalculateVideoSize() %d (%d %d)\r\n", layout.zoom,
                layout.videoRect.width(), layout.videoRect.height());
    }
}

void LiveView::resizeVideoWindow()
{
    m_box.position();
    if (!m_box.isFullScreen()) {
        qCDebug(lcLive, "resizeVideoWindow() (%d %d)\r\n", m_widgets.surface->width(),
                m_widgets.surface->height());
    }
}

/// A native window may be recreated when its parent becomes a top-level window or a child again.
void LiveView::followWindow()
{
    QWidget *surface = m_widgets.surface->renderSurface();
    if (!m_camera || !surface || surface->internalWinId() == m_window)
        return;
    m_camera->setup_live_stream(m_stream, surface);
    m_window = surface->internalWinId();
    m_reportRequested = false;
    play();
}

void LiveView::applyVolume()
{
    if (isPlaying())
        m_camera->set_volume(m_volume());
}

void LiveView::setRecording(bool recording)
{
    m_recording = recording;
    m_widgets.recording->setStyleSheet(
        recording ? QStringLiteral("border-image:url(%1);").arg(recordImage(true)) : QString());
    if (!recording)
        setWritingFails(false);
    applyRecording();
    showWritten();
}

void LiveView::applyRecording()
{
    if (!isPlaying())
        return;
    const bool writing = m_camera->is_writing();
    if (m_recording && !writing) {
        const QString base = recordingBase(madeFolder(), m_clock());
        const QString still = clipStill(clipFile(base));
        m_camera->snapshot(still);
        const bool begun = m_camera->begin_writing(base, recordingLimit) >= 0;
        // A still without a clip would stay for ever: the album shows clips.
        if (!begun && !QFile::exists(clipFile(base)))
            QFile::remove(still);
        setWritingFails(!begun);
    } else if (!m_recording && writing) {
        m_camera->end_writing();
    }
}

void LiveView::checkWriting()
{
    setWritingFails(m_recording && !isWritten());
}

bool LiveView::isWritten() const
{
    return isPlaying() && m_camera->is_writing() && !m_camera->isWritingHeldUp();
}

// The mark shows what the user wants. Beside it stands what is not so.
void LiveView::showWritten()
{
    const bool written = m_recording && isWritten();
    m_widgets.recordingNote->setVisible(m_recording && !written);
    m_notice.setRecording(m_recording, written);
}

void LiveView::setWritingFails(bool fails)
{
    if (m_writingFails == fails)
        return;
    m_writingFails = fails;
    QString trouble;
    if (fails) {
        trouble = tr("%1 is not being recorded: the album folder cannot be written, or the disk is "
                     "full.")
                      .arg(m_camera->name());
    }
    m_widgets.recording->setToolTip(plainToolTip(trouble));
    if (PageHost *host = pageHost())
        host->showStatus(trouble);
}

void LiveView::takePhoto()
{
    if (isPlaying())
        m_camera->snapshot(photoFile(madeFolder(), m_clock()));
}

void LiveView::showStatus()
{
    if (!m_camera)
        return;
    if (!isPlaying()) {
        showConnecting();
        return;
    }
    const QSize size = streamSize();
    const QString first = m_statusSize == StatusSize::Scaled
                              ? scaledSizeText(size, m_box.layout().videoRect.width())
                              : sizeText(size);
    showStatusText(first + QLatin1String(statusGap) +
                   rateText(m_camera->get_frame_rate(), m_camera->get_bit_rate()));
}

void LiveView::showConnecting()
{
    showStatusText(m_camera->name() + tr(" is connecting..."));
}

void LiveView::showStatusText(const QString &text)
{
    m_widgets.status->setText(text);
    // A picture may be smaller than its status.
    m_widgets.status->setToolTip(plainToolTip(details()));
}

QString LiveView::details() const
{
    QStringList lines{m_widgets.status->text()};
    if (isPlaying()) {
        if (const auto figures = m_camera->figures())
            lines << figuresText(*figures);
    } else if (m_camera) {
        lines << reasonText(*m_camera);
    }
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}

QSize LiveView::streamSize() const
{
    return {m_camera->get_video_width(), m_camera->get_video_height()};
}

QString LiveView::madeFolder() const
{
    QString folder = CameraSettings::instance().cameraFolder(m_camera->hostname());
    makeFolder(folder);
    return folder;
}

} // namespace zelvaro
