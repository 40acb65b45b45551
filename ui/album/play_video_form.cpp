#include "ui/album/play_video_form.h"

#include "ui/album/album_view.h"
#include "ui/album/click_video_player.h"
#include "ui/album/clip_size.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui_play_video_form.h"

#include <QKeyEvent>
#include <QSlider>

#include <phonon/mediaobject.h>
#include <phonon/videowidget.h>

namespace {

constexpr QSize kUnknownSize(640, 480); // until the recording's own is known
constexpr int kStartDelay = 100;        // milliseconds
constexpr int kStartLimit = 5000;       // milliseconds until a recording must be playing

} // namespace

CPlayVideoForm::CPlayVideoForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CPlayVideoForm>())
{
    m_ui->setupUi(this);
    m_view = std::make_unique<zelvaro::AlbumView>(m_ui->framePhotoArea, m_ui->framePhotoWindow,
                                                  m_ui->framePlayer, m_ui->labelStatus);
    m_ui->framePlayer->installEventFilter(this);
    m_ui->sliderSeek->setIconVisible(false);
    // A seek for each pixel of a drag is more than the back end keeps up with.
    m_ui->sliderSeek->setTracking(false);

    m_startTimer.setSingleShot(true);
    m_startTimer.setInterval(kStartDelay);
    connect(&m_startTimer, &QTimer::timeout, this, &CPlayVideoForm::slotPlay);
    m_watchTimer.setSingleShot(true);
    m_watchTimer.setInterval(kStartLimit);
    connect(&m_watchTimer, &QTimer::timeout, this, &CPlayVideoForm::watchStart);

    connect(m_ui->framePhotoArea, &CVideoAreaFrame::signalResize, this,
            &CPlayVideoForm::slotPhotoAreaResize);
    connect(m_ui->btnPrev, &QToolButton::clicked, this, &CPlayVideoForm::slotPrev);
    connect(m_ui->btnPlay, &QToolButton::clicked, this, &CPlayVideoForm::slotPlay);
    connect(m_ui->btnNext, &QToolButton::clicked, this, &CPlayVideoForm::slotNext);
    connect(m_ui->btnZoomIn, &QToolButton::clicked, this, &CPlayVideoForm::slotZoomIn);
    connect(m_ui->btnZoomOut, &QToolButton::clicked, this, &CPlayVideoForm::slotZoomOut);
    connect(m_ui->btnDelete, &QToolButton::clicked, this, &CPlayVideoForm::slotDelete);
    connect(m_ui->btnFullScreen, &QToolButton::clicked, this, &CPlayVideoForm::slotFullScreen);
    connect(m_ui->btnBack, &QToolButton::clicked, this, &CPlayVideoForm::slotBack);
    connect(m_ui->framePlayer, &zelvaro::PlayerFrame::escaped, this,
            &CPlayVideoForm::slotPhotoDoubleClicked);
}

CPlayVideoForm::~CPlayVideoForm()
{
    stop(true);
}

// The media framework takes a while to load, which is not spent at the start of the program.
void CPlayVideoForm::makePlayer()
{
    m_player = new ClickVideoPlayer;
    m_ui->framePlayer->setPlayer(m_player);
    m_ui->sliderSeek->setMediaObject(m_player->mediaObject());
    connect(m_player, &ClickVideoPlayer::doubleClicked, this,
            &CPlayVideoForm::slotPhotoDoubleClicked);
}

void CPlayVideoForm::setList(PageHost::TileList *list)
{
    m_view->setList(list);
    if (!m_player)
        makePlayer();
    connect(m_player->mediaObject(), &Phonon::MediaObject::stateChanged, this,
            &CPlayVideoForm::slotStateChanged, Qt::UniqueConnection);
}

void CPlayVideoForm::showVideo(CPhotoMgrItemForm *tile)
{
    stopPlayer();
    showPlaying(false);
    m_ui->framePlayer->setVideoSize(kUnknownSize);
    m_view->show(tile, kUnknownSize);
    repaintPlayer();
    m_startTimer.start();
    m_ui->framePlayer->setFocus();
}

void CPlayVideoForm::stop(bool clear)
{
    if (!m_player)
        return;
    disconnect(m_player->mediaObject(), &Phonon::MediaObject::stateChanged, this,
               &CPlayVideoForm::slotStateChanged);
    m_view->leaveFullScreen();
    stopPlayer();
    showPlaying(false);
    if (clear && m_player->mediaObject()->hasVideo())
        m_player->mediaObject()->clear();
}

void CPlayVideoForm::stopPlayer()
{
    m_startTimer.stop();
    m_watchTimer.stop();
    m_player->stop();
}

int CPlayVideoForm::zoom() const
{
    return m_view->zoom();
}

bool CPlayVideoForm::isVideoFullScreen() const
{
    return m_view->isFullScreen();
}

// --- playback ------------------------------------------------------------------------------------

void CPlayVideoForm::slotPlay()
{
    if (!m_player || !m_view->current())
        return;
    if (!m_player->hasBackEnd()) {
        m_view->setNote(tr("Recordings cannot be played: no back end of Phonon is installed."));
        return;
    }
    if (m_player->isPlaying()) {
        m_player->pause();
    } else if (m_player->isPaused()) {
        m_player->play();
    } else {
        m_view->setNote({});
        m_watchTimer.start();
        m_player->playFile(m_view->current()->fullPath());
    }
}

void CPlayVideoForm::slotStateChanged(Phonon::State newstate, Phonon::State oldstate)
{
    if (oldstate == Phonon::LoadingState)
        adoptVideoSize();
    switch (newstate) {
    case Phonon::PlayingState:
        m_watchTimer.stop();
        adoptVideoSize();
        showPlaying(true);
        break;
    case Phonon::StoppedState:
        m_player->videoWidget()->exitFullScreen();
        [[fallthrough]];
    case Phonon::PausedState:
        showPlaying(false);
        if (m_player->isAtEnd())
            m_player->mediaObject()->stop();
        break;
    case Phonon::ErrorState:
        m_watchTimer.stop();
        showPlaying(false);
        m_view->setNote(tr("This recording cannot be played."));
        break;
    case Phonon::LoadingState:
    case Phonon::BufferingState:
        break;
    }
}

// The back end's hint is a default before the first frame, and may be a scaled size after it.
void CPlayVideoForm::adoptVideoSize()
{
    if (!m_view->current())
        return;
    QSize size = zelvaro::clipSize(m_view->current()->fullPath());
    if (size.isEmpty())
        size = m_player->videoSizeHint();
    if (size.isEmpty() || size == m_view->pictureSize())
        return;
    m_ui->framePlayer->setVideoSize(size);
    m_view->setPictureSize(size);
    repaintPlayer();
}

void CPlayVideoForm::watchStart()
{
    if (m_player->isPlaying() || m_player->isPaused() || m_player->mediaObject()->hasVideo())
        return;
    m_view->setNote(tr("This recording cannot be played."));
}

void CPlayVideoForm::showPlaying(bool playing)
{
    m_ui->btnPlay->setIcon(QIcon(playing ? QStringLiteral(":/images/panelbtn/pausebtn.png")
                                         : QStringLiteral(":/images/panelbtn/playbtn.png")));
    const QString name = playing ? tr("Pause") : tr("Play");
    m_ui->btnPlay->setToolTip(name);
    m_ui->btnPlay->setAccessibleName(name);
}

// --- the picture on the page ---------------------------------------------------------------------

void CPlayVideoForm::repaintPlayer()
{
    if (m_player && !m_view->isFullScreen())
        m_player->repaint();
}

void CPlayVideoForm::slotPhotoAreaResize()
{
    m_view->areaResized();
    repaintPlayer();
}

void CPlayVideoForm::slotZoomIn()
{
    m_view->zoomIn();
    repaintPlayer();
}

void CPlayVideoForm::slotZoomOut()
{
    m_view->zoomOut();
    repaintPlayer();
}

void CPlayVideoForm::slotFullScreen()
{
    m_view->enterFullScreen();
}

void CPlayVideoForm::slotPhotoDoubleClicked()
{
    m_view->toggleFullScreen();
    repaintPlayer();
}

// --- the album -----------------------------------------------------------------------------------

void CPlayVideoForm::slotPrev()
{
    if (CPhotoMgrItemForm *tile = m_view->previous())
        showVideo(tile);
}

void CPlayVideoForm::slotNext()
{
    if (CPhotoMgrItemForm *tile = m_view->next())
        showVideo(tile);
}

void CPlayVideoForm::slotDelete()
{
    // Some systems do not delete a file that is open.
    if (m_player) {
        stopPlayer();
        m_player->closeFile();
    }
    if (CPhotoMgrItemForm *tile = m_view->deleteCurrent())
        showVideo(tile);
    else
        slotBack();
}

void CPlayVideoForm::slotBack()
{
    if (m_player) {
        m_view->leaveFullScreen();
        stopPlayer();
        if (m_player->mediaObject()->hasVideo())
            m_player->mediaObject()->clear();
    }
    if (PageHost *host = pageHost())
        host->backToVideoMgr();
}

// The video in full screen is a window of its own, whose keys do not come to the page.
bool CPlayVideoForm::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_ui->framePlayer && event->type() == QEvent::KeyPress &&
        handleKey(static_cast<QKeyEvent *>(event)->key()))
        return true;
    return QWidget::eventFilter(watched, event);
}

void CPlayVideoForm::keyPressEvent(QKeyEvent *event)
{
    if (!handleKey(event->key()))
        QWidget::keyPressEvent(event);
}

bool CPlayVideoForm::handleKey(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_PageUp:
        slotPrev();
        return true;
    case Qt::Key_Right:
    case Qt::Key_PageDown:
        slotNext();
        return true;
    case Qt::Key_Space:
        slotPlay();
        return true;
    case Qt::Key_Plus:
        slotZoomIn();
        return true;
    case Qt::Key_Minus:
        slotZoomOut();
        return true;
    case Qt::Key_Delete:
        slotDelete();
        return true;
    default:
        return false;
    }
}
