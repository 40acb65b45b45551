#include "ui/album/click_video_player.h"

#include <QMouseEvent>
#include <QUrl>

#include <phonon/mediaobject.h>
#include <phonon/mediasource.h>
#include <phonon/videowidget.h>

namespace {

constexpr int tickInterval = 250; // milliseconds

} // namespace

// The parent keeps the ratio. The back end, if it is to do that, takes the ratio from a size of the
// video that it does not know yet.
ClickVideoPlayer::ClickVideoPlayer(QWidget *parent) : Phonon::VideoPlayer(parent)
{
    videoWidget()->setAspectRatio(Phonon::VideoWidget::AspectRatioWidget);
    Phonon::MediaObject *media = mediaObject();
    media->setTickInterval(tickInterval);
    connect(
        media, &Phonon::MediaObject::tick, this,
        [this, media](qint64 time) { emit timeChanged(time, media->totalTime()); });
    connect(media, &Phonon::MediaObject::totalTimeChanged, this,
            [this, media](qint64 total) { emit timeChanged(media->currentTime(), total); });
}

bool ClickVideoPlayer::hasBackEnd() const
{
    return mediaObject()->isValid();
}

bool ClickVideoPlayer::isAtEnd() const
{
    const Phonon::MediaSource::Type type = mediaObject()->currentSource().type();
    const bool hasSource =
        type != Phonon::MediaSource::Invalid && type != Phonon::MediaSource::Empty;
    return hasSource && mediaObject()->remainingTime() == 0;
}

QSize ClickVideoPlayer::videoSizeHint() const
{
    const QSize hint = videoWidget()->sizeHint();
    return hint.isEmpty() ? QSize() : hint;
}

// An address, because a bare name with a "%" or "#" in it would be taken apart.
void ClickVideoPlayer::playFile(const QString &file)
{
    play(Phonon::MediaSource(QUrl::fromLocalFile(file)));
}

bool ClickVideoPlayer::hasVideo() const
{
    return mediaObject()->hasVideo();
}

void ClickVideoPlayer::leaveVideoFullScreen()
{
    videoWidget()->exitFullScreen();
}

void ClickVideoPlayer::closeFile()
{
    stop();
    mediaObject()->clear();
}

void ClickVideoPlayer::clearVideo()
{
    if (hasVideo())
        mediaObject()->clear();
}

void ClickVideoPlayer::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        emit doubleClicked();
    else
        Phonon::VideoPlayer::mouseDoubleClickEvent(event);
}
