#include "platform/cammgr/live_stream.h"

#include "platform/cammgr/stream_session.h"

#include <algorithm>

namespace cammgr {

namespace {

using namespace std::chrono_literals;

constexpr int loudest = 200;
constexpr int duckedPart = 10; ///< of the volume, while the camera is talked to
// Longer than a disk that works ever needs.
constexpr auto closingLimit = 10s;

} // namespace

class LiveStream::Private
{
public:
    Listener listener;
    std::shared_ptr<Session> session;
    std::shared_ptr<media::ClosingClips> closing = std::make_shared<media::ClosingClips>();
    int volume = 100;
    bool isDucked = false;

    int heardVolume() const { return isDucked ? volume / duckedPart : volume; }
};

LiveStream::LiveStream(Listener listener) : d(std::make_unique<Private>())
{
    d->listener = std::move(listener);
}

LiveStream::~LiveStream()
{
    stop();
    d->closing->wait(closingLimit);
}

void LiveStream::start(const StreamRequest &request)
{
    if (d->session && d->session->resume(request))
        return;
    stop();
    d->session = std::make_shared<Session>(request, d->listener, d->closing);
    d->session->start(request, d->heardVolume());
}

void LiveStream::stop()
{
    if (!d->session)
        return;
    d->session->stop();
    d->session.reset();
}

bool LiveStream::isActive() const
{
    return d->session && d->session->isActive();
}

bool LiveStream::isPlaying() const
{
    return d->session && d->session->isPlaying();
}

bool LiveStream::hasVideo() const
{
    return d->session && d->session->hasVideo();
}

bool LiveStream::hasAudio() const
{
    return d->session && d->session->hasAudio();
}

void LiveStream::setVolume(int percent)
{
    d->volume = std::clamp(percent, 0, loudest);
    if (d->session)
        d->session->setVolume(d->heardVolume());
}

void LiveStream::duck(bool on)
{
    if (std::exchange(d->isDucked, on) != on)
        setVolume(d->volume);
}

int LiveStream::snapshot(const std::string &path)
{
    return d->session ? d->session->snapshot(path) : -1;
}

int LiveStream::beginWriting(const std::string &basePath, int limitBytes)
{
    return d->session ? d->session->beginWriting(basePath, limitBytes) : -1;
}

int LiveStream::endWriting()
{
    return d->session ? d->session->endWriting() : -1;
}

bool LiveStream::isWriting() const
{
    return d->session && d->session->isWriting();
}

bool LiveStream::isWaitingToWrite() const
{
    return d->session && d->session->isWaitingToWrite();
}

int LiveStream::frameRate() const
{
    return d->session ? d->session->frameRate() : 0;
}

int LiveStream::bitRate() const
{
    return d->session ? d->session->bitRate() : 0;
}

int LiveStream::width() const
{
    return d->session ? d->session->width() : 0;
}

int LiveStream::height() const
{
    return d->session ? d->session->height() : 0;
}

std::vector<media::AccessUnit> LiveStream::currentFrames() const
{
    return d->session ? d->session->currentFrames() : std::vector<media::AccessUnit>();
}

std::optional<StreamFigures> LiveStream::figures() const
{
    return d->session ? std::optional(d->session->figures()) : std::nullopt;
}

} // namespace cammgr
