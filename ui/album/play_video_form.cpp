#include "ui/album/play_video_form.h"

#include "ui/album/click_video_player.h"
#include "ui/album/clip_size.h"
#include "ui/album/photo_mgr_item_form.h"
#include "ui/album/play_time.h"
#include "ui/common/page_actions.h"
#include "ui_play_video_form.h"

#include <QSlider>

#include <phonon/mediaobject.h>

namespace {

constexpr QSize unknownSize(640, 480); // until the recording's own is known
constexpr int startDelay = 100;        // milliseconds
constexpr int startLimit = 5000;       // milliseconds until a recording must be playing
constexpr int fullVolume = 100;        // percent of what was recorded

} // namespace

CPlayVideoForm::CPlayVideoForm(QWidget *parent)
    : AlbumView(parent)
    , m_ui(std::make_unique<Ui::CPlayVideoForm>())
{
    m_ui->setupUi(this);
    setUp(widgetsOf(*m_ui, m_ui->framePlayer));
    m_ui->sliderSeek->setIconVisible(false);
    // A seek for each pixel of a drag is more than the back end keeps up with.
    m_ui->sliderSeek->setTracking(false);

    m_startTimer.setSingleShot(true);
    m_startTimer.setInterval(startDelay);
    connect(&m_startTimer, &QTimer::timeout, this, &CPlayVideoForm::slotPlay);
    m_watchTimer.setSingleShot(true);
    m_watchTimer.setInterval(startLimit);
    connect(&m_watchTimer, &QTimer::timeout, this, &CPlayVideoForm::watchStart);

    connect(m_ui->btnPlay, &QToolButton::clicked, this, &CPlayVideoForm::slotPlay);
    connect(m_ui->framePlayer, &zelvaro::FittedFrame::escaped, this,
            &CPlayVideoForm::slotPhotoDoubleClicked);
    actions().addHandled(m_ui->btnPlay, Qt::Key_Space);
    actions().add(m_ui->sliderVolume->muteButton(), {Qt::Key_M});
    m_ui->sliderVolume->setRange(0, fullVolume);
    m_ui->sliderVolume->setValue(fullVolume);
    connect(m_ui->sliderVolume, &CVolumeSliderForm::valueChanged, this,
            &CPlayVideoForm::applyVolume);
    connect(m_ui->sliderVolume, &CVolumeSliderForm::muteChanged, this,
            &CPlayVideoForm::applyVolume);
}

CPlayVideoForm::~CPlayVideoForm()
{
    stop(true);
}

// The media framework takes a while to load, which is not spent at the start of the program.
void CPlayVideoForm::makePlayer()
{
    m_player = new ClickVideoPlayer;
    m_ui->framePlayer->setContent(m_player);
    m_ui->sliderSeek->setMediaObject(m_player->mediaObject());
    connect(m_player, &ClickVideoPlayer::doubleClicked, this,
            &CPlayVideoForm::slotPhotoDoubleClicked);
    connect(m_player, &ClickVideoPlayer::timeChanged, this, &CPlayVideoForm::showTime);
    applyVolume();
}

void CPlayVideoForm::setList(PageHost::TileList *list)
{
    AlbumView::setList(list);
    if (!m_player)
        makePlayer();
    connect(m_player->mediaObject(), &Phonon::MediaObject::stateChanged, this,
            &CPlayVideoForm::slotStateChanged, Qt::UniqueConnection);
}

void CPlayVideoForm::showVideo(CPhotoMgrItemForm *tile)
{
    stopPlayer();
    showPlaying(false);
    m_ui->framePlayer->setContentSize(unknownSize);
    setCurrent(tile, unknownSize);
    showTime(0, 0);
    m_startTimer.start();
    m_ui->framePlayer->setFocus();
}

void CPlayVideoForm::stop(bool clear)
{
    if (!m_player)
        return;
    disconnect(m_player->mediaObject(), &Phonon::MediaObject::stateChanged, this,
               &CPlayVideoForm::slotStateChanged);
    leaveFullScreen();
    stopPlayer();
    showPlaying(false);
    if (clear)
        m_player->clearVideo();
}

void CPlayVideoForm::stopPlayer()
{
    m_startTimer.stop();
    m_watchTimer.stop();
    m_player->stop();
}

// --- playback ------------------------------------------------------------------------------------

void CPlayVideoForm::slotPlay()
{
    m_startTimer.stop(); // a click may come first
    if (!m_player || !current())
        return;
    if (!m_player->hasBackEnd()) {
        setNote(tr("Recordings cannot be played: no back end of Phonon is installed."));
        return;
    }
    if (m_player->isPlaying()) {
        m_player->pause();
    } else if (m_player->isPaused()) {
        m_player->play();
    } else {
        setNote({});
        m_watchTimer.start();
        m_player->playFile(current()->fullPath());
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
        m_player->leaveVideoFullScreen();
        [[fallthrough]];
    case Phonon::PausedState:
        showPlaying(false);
        if (m_player->isAtEnd())
            m_player->stop();
        break;
    case Phonon::ErrorState:
        m_watchTimer.stop();
        showPlaying(false);
        setNote(tr("This recording cannot be played."));
        break;
    case Phonon::LoadingState:
    case Phonon::BufferingState:
        break;
    }
}

// The back end's hint is a default before the first frame, and may be a scaled size after it.
void CPlayVideoForm::adoptVideoSize()
{
    if (!current())
        return;
    QSize size = zelvaro::clipSize(current()->fullPath());
    if (size.isEmpty())
        size = m_player->videoSizeHint();
    if (size.isEmpty() || size == pictureSize())
        return;
    m_ui->framePlayer->setContentSize(size);
    setPictureSize(size);
}

void CPlayVideoForm::watchStart()
{
    if (m_player->isPlaying() || m_player->isPaused() || m_player->hasVideo())
        return;
    setNote(tr("This recording cannot be played."));
}

void CPlayVideoForm::showPlaying(bool playing)
{
    m_ui->btnPlay->setIcon(QIcon(playing ? QStringLiteral(":/images/panelbtn/pausebtn.png")
                                         : QStringLiteral(":/images/panelbtn/playbtn.png")));
    const QString name = playing ? tr("Pause") : tr("Play");
    m_ui->btnPlay->setToolTip(name);
    m_ui->btnPlay->setAccessibleName(name);
}

void CPlayVideoForm::showTime(qint64 elapsed, qint64 total)
{
    m_ui->labelTime->setText(total > 0 ? zelvaro::playTimeText(elapsed, total) : QString());
}

void CPlayVideoForm::applyVolume()
{
    if (!m_player)
        return;
    const int volume = m_ui->sliderVolume->isMuted() ? 0 : m_ui->sliderVolume->value();
    m_player->setVolume(static_cast<float>(volume) / fullVolume);
}

// --- the page ------------------------------------------------------------------------------------

void CPlayVideoForm::pictureMoved()
{
    if (m_player)
        m_player->repaint();
}

void CPlayVideoForm::closeFile()
{
    if (!m_player)
        return;
    stopPlayer();
    m_player->closeFile();
    showTime(0, 0);
}

void CPlayVideoForm::leave()
{
    if (!m_player)
        return;
    stopPlayer();
    m_player->clearVideo();
}

bool CPlayVideoForm::handlePlainKey(int key, bool repeated)
{
    if (key != Qt::Key_Space)
        return AlbumView::handlePlainKey(key, repeated);
    if (!repeated)
        slotPlay();
    return true;
}
