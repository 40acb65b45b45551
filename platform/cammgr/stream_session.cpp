#include "platform/cammgr/stream_session.h"

#include "platform/cammgr/io_thread.h"
#include "platform/media/left_overs.h"
#include "platform/media/still_picture.h"
#include "platform/media/worker_pool.h"

#include <algorithm>
#include <utility>

namespace cammgr {

namespace {

using namespace std::chrono_literals;

constexpr auto silenceLimit = 5s;
constexpr auto decodeLimit = 5s;
constexpr auto keyFramePause = 1s;
constexpr auto figuresPeriod = 100ms;
// Limit for decoding a frame for a snapshot of a stream that is not shown.
constexpr auto stillBudget = 60ms;

/// What was counted before and after a stream was lost.
rtsp::MediaStatistics sumOf(const rtsp::MediaStatistics &before, rtsp::MediaStatistics now)
{
    now.packets += before.packets;
    now.bytes += before.bytes;
    now.lost += before.lost;
    now.reordered += before.reordered;
    now.dropped += before.dropped;
    now.units += before.units;
    now.damaged += before.damaged;
    return now;
}

} // namespace

LiveStream::Session::Session(const StreamRequest &request, const Listener &listener,
                             std::shared_ptr<media::ClosingClips> closing)
    : m_window(request.window)
    , m_listener(listener)
    , m_audio(std::make_shared<media::AudioOutput>())
    , m_recorder(std::make_shared<media::Recorder>(m_memory, std::move(closing),
                                                   [this] { wantKeyFrame(); }))
    , m_view(request.window == 0 ? nullptr
                                 : std::make_shared<media::LiveView>(
                                       request.window, m_memory, [this] { wantKeyFrame(); },
                                       [this] { checkFirstPicture(); }))
{
    m_lastSign = media::SteadyClock::now();
}

LiveStream::Session::~Session()
{
    release();
}

void LiveStream::Session::start(const StreamRequest &request, int volume)
{
    m_audio->setVolume(volume);
    if (m_view)
        media::mediaWorkers().run([self = shared_from_this()] { self->m_view->open(); });
    // The media framework is loaded on a media worker, which may take long.
    media::mediaWorkers().run([self = shared_from_this(), request] {
        ioThread().post([self, request] { self->openReceiver(request); });
    });
}

bool LiveStream::Session::resume(const StreamRequest &request)
{
    auto lost = State::Lost;
    if (request.window != m_window || !m_state.compare_exchange_strong(lost, State::Starting))
        return false;
    ioThread().post([self = shared_from_this(), request] { self->openReceiver(request); });
    return true;
}

void LiveStream::Session::stop()
{
    {
        std::lock_guard lock(m_callbackMutex);
        m_muted = true;
    }
    m_state = State::Ended;
    release();
    closeReceiver();
}

bool LiveStream::Session::isPlaying() const
{
    return m_state == State::Playing &&
           media::SteadyClock::now() - m_lastSign.load() < silenceLimit;
}

int LiveStream::Session::snapshot(const std::string &path)
{
    if (!isPlaying())
        return -1;
    media::SampleRef picture;
    if (m_view && m_view->isDecoding())
        picture = m_view->latest();
    if (!picture)
        picture = media::decodeLast(m_memory.frames(), stillBudget);
    media::tidyFolderOf(path);
    return media::writeJpeg(picture, path);
}

int LiveStream::Session::beginWriting(const std::string &basePath, int limitBytes)
{
    return isPlaying() ? m_recorder->begin(basePath, limitBytes, m_hasAudio) : -1;
}

void LiveStream::Session::openReceiver(const StreamRequest &request)
{
    if (m_state == State::Ended)
        return;
    if (m_view)
        m_playout.emplace([this](const media::AccessUnit &unit) { m_view->takeFrame(unit); });
    m_url = request.source.url;
    m_receiver = std::make_unique<rtsp::Receiver>(*this, request.source);
    if (request.session)
        m_receiver->start(std::move(*request.session));
    else
        m_receiver->start();
}

/// Any thread. Nothing waits for the camera.
void LiveStream::Session::closeReceiver()
{
    ioThread().post([self = shared_from_this()] {
        self->m_receiver.reset();
        self->m_playout.reset();
    });
}

/// Nothing is drawn, recorded or heard any more when it returns.
void LiveStream::Session::release()
{
    if (m_view)
        m_view->close();
    m_recorder->end();
    m_audio->close();
}

void LiveStream::Session::described(bool hasVideo, bool hasAudio,
                                    const std::shared_ptr<const base::AudioFormat> &sound)
{
    m_hasVideo = hasVideo;
    m_hasAudio = hasAudio;
    m_soundFormat = sound;
    if (sound)
        m_recorder->expectAudio(media::audioCaps(*sound));
}

void LiveStream::Session::plays()
{
    m_lastSign = media::SteadyClock::now();
    wantKeyFrame();
}

void LiveStream::Session::video(const base::AccessUnit &received)
{
    if (m_state == State::Ended)
        return;
    base::AccessUnit unit = received;
    unit.number += m_numberOffset;
    unit.time += m_timeOffset;
    m_lastNumber = unit.number;
    m_lastTime = std::max(m_lastTime, unit.time);
    // Of a stream that is garbage a frame gets through now and then.
    const bool followsLoss = std::exchange(m_lossBefore, false);
    if (unit.key || !followsLoss)
        m_lastSign = unit.arrived;
    const media::AccessUnit wrapped = m_wrapper.wrap(unit);
    m_memory.takeFrame(wrapped);
    if (m_playout)
        m_playout->take(wrapped);
    m_recorder->takeFrame(wrapped);
    m_stats.takeFrame(wrapped);
    if (unit.format != m_format) {
        m_format = unit.format;
        m_width = unit.format->width;
        m_height = unit.format->height;
    }
    if (unit.arrived - m_figuresNoted >= figuresPeriod)
        noteFigures();
    if (unit.key && !m_keyReceived.exchange(true)) {
        m_firstKey = unit.arrived;
        checkFirstPicture();
    }
    checkDecoding(unit.arrived);
}

void LiveStream::Session::checkDecoding(media::SteadyClock::time_point now)
{
    if (m_toldUndecodable || m_state != State::Starting || !m_view || m_view->isUnseen() ||
        !m_firstKey || now - *m_firstKey < decodeLimit)
        return;
    m_toldUndecodable = true;
    tell(m_listener.undecodable);
}

/// The receiver's figures belong to its thread.
void LiveStream::Session::noteFigures()
{
    m_figuresNoted = media::SteadyClock::now();
    const rtsp::MediaStatistics video = m_receiver->videoStatistics();
    const std::lock_guard lock(m_figuresMutex);
    m_figures.video = sumOf(m_counted, video);
    m_figures.transport = m_receiver->transportName();
    m_figures.format = m_format;
    m_figures.sound = m_soundFormat;
}

StreamFigures LiveStream::Session::figures() const
{
    StreamFigures figures;
    {
        const std::lock_guard lock(m_figuresMutex);
        figures = m_figures;
    }
    figures.bitRate = bitRate();
    if (m_view)
        figures.view = m_view->figures();
    if (m_view && !m_view->isUnseen())
        figures.shown = figures.view.shownArrived;
    else if (m_keyReceived)
        figures.shown = m_lastSign.load();
    return figures;
}

/// Any thread. What can be seen plays when it is seen; what nobody can see is not decoded, and
/// plays when a picture could be.
void LiveStream::Session::checkFirstPicture()
{
    if (!m_keyReceived || (m_view && !m_view->isUnseen() && !m_view->hasShown()))
        return;
    auto starting = State::Starting;
    if (m_state.compare_exchange_strong(starting, State::Playing))
        tell(m_listener.firstFrame);
}

void LiveStream::Session::lostPackets()
{
    m_lossBefore = true;
    wantKeyFrame();
}

void LiveStream::Session::audio(const base::AudioUnit &unit)
{
    if (m_state == State::Ended)
        return;
    m_soundFormat = unit.format;
    media::AudioUnit wrapped = m_wrapper.wrap(unit);
    wrapped.time += m_timeOffset;
    m_memory.takeAudio(wrapped);
    m_recorder->takeAudio(wrapped);
    m_audio->takeAudio(wrapped);
}

void LiveStream::Session::ended(const rtsp::StreamFailure &failure)
{
    g_log("cammgr", G_LOG_LEVEL_INFO, "%s: %s", m_url.c_str(), failure.text.c_str());
    // Nobody tries a refused login again by himself.
    const State end = failure.end == StreamEnd::Refused ? State::Ended : State::Lost;
    State before = m_state;
    while (before != State::Ended && !m_state.compare_exchange_weak(before, end)) {
    }
    if (before == State::Ended)
        return;
    if (end == State::Lost)
        interrupt();
    closeReceiver();
    const auto report = [self = shared_from_this(), failure] {
        if (self->m_listener.ended)
            self->tell([&] { self->m_listener.ended(failure); });
    };
    if (end == State::Lost) {
        report();
        return;
    }
    // Not here: to let go of a window may take until a frame is decoded.
    media::mediaWorkers().run([self = shared_from_this(), report] {
        self->release();
        report();
    });
}

/// The next frame begins another stream. The last picture stays on the window; numbers and times go
/// on, so that view, recorder and memory can.
void LiveStream::Session::interrupt()
{
    noteFigures();
    m_counted = m_figures.video;
    m_playout.reset();
    m_numberOffset = m_lastNumber;
    const auto silence = media::SteadyClock::now() - m_lastSign.load();
    m_timeOffset = m_lastTime + std::chrono::nanoseconds(silence).count();
    m_keyReceived = false;
    m_firstKey.reset();
    m_toldUndecodable = false;
    m_lossBefore = false;
    m_hasVideo = m_hasAudio = false;
    if (m_view)
        m_view->interrupt();
    m_recorder->interrupt();
    m_audio->interrupt();
}

/// Any thread. Limited to what a camera answers without trouble.
void LiveStream::Session::wantKeyFrame()
{
    const auto now = media::SteadyClock::now();
    auto last = m_lastKeyAsked.load();
    if (m_state == State::Ended || now - last < keyFramePause)
        return;
    if (m_lastKeyAsked.compare_exchange_strong(last, now))
        tell(m_listener.wantKeyFrame);
}

void LiveStream::Session::tell(const std::function<void()> &callback)
{
    std::lock_guard lock(m_callbackMutex);
    if (!m_muted && callback)
        callback();
}

} // namespace cammgr
