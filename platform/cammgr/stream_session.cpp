#include "platform/cammgr/stream_session.h"

#include "platform/media/left_overs.h"
#include "platform/media/still_picture.h"
#include "platform/media/worker_pool.h"

namespace cammgr {

namespace {

using namespace std::chrono_literals;

constexpr auto silenceLimit = 5s;
// Connecting, describing and setting up each have their own time-out; this is the upper bound for
// all of them together.
constexpr auto connectLimit = 20s;
// Half of the shortest session time-out that is usual (RFC 2326 12.37: 60 s when none is said).
constexpr auto keepAlivePeriod = 10s;
constexpr auto keyFramePause = 1s;
// Limit for decoding a frame for a snapshot of a stream that is not shown.
constexpr auto stillBudget = 60ms;

} // namespace

LiveStream::Session::Session(const StreamRequest &request, const Listener &listener,
                             std::shared_ptr<media::ClosingClips> closing)
    : m_request(request)
    , m_listener(listener)
    , m_audio(std::make_shared<media::AudioOutput>())
    , m_recorder(std::make_shared<media::Recorder>(m_memory, std::move(closing),
                                                   [this] { wantKeyFrame(); }))
    , m_view(request.window == 0 ? nullptr
                                 : std::make_shared<media::LiveView>(
                                       request.window, m_memory, [this] { wantKeyFrame(); },
                                       [this] { checkFirstPicture(); }))
{
    m_started = m_lastSign = m_lastKeepAlive = media::SteadyClock::now();
}

LiveStream::Session::~Session()
{
    release();
}

void LiveStream::Session::start(int volume)
{
    m_audio->setVolume(volume);
    if (m_view)
        media::mediaWorkers().run([self = shared_from_this()] { self->m_view->open(); });
    media::mediaWorkers().run(
        [self = shared_from_this()] { self->openSource(Transport::Interleaved); });
    media::Housekeeper::instance().add(weak_from_this());
}

void LiveStream::Session::stop()
{
    {
        std::lock_guard lock(m_callbackMutex);
        m_muted = true;
    }
    m_state = State::Ended;
    release();
    media::mediaWorkers().run([self = shared_from_this()] { self->closeSource(); });
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

void LiveStream::Session::openSource(Transport transport)
{
    std::lock_guard lock(m_sourceMutex);
    if (m_stopped)
        return;
    m_transport = transport;
    m_source = std::make_unique<RtspSource>(*this, m_request, transport);
    if (!m_source->open())
        sourceEnded(StreamEnd::Failed);
}

void LiveStream::Session::closeSource()
{
    std::lock_guard lock(m_sourceMutex);
    m_stopped = true;
    m_source.reset();
}

void LiveStream::Session::keepAlive()
{
    std::lock_guard lock(m_sourceMutex);
    if (m_source)
        m_source->keepAlive();
}

/// Nothing is drawn, recorded or heard any more when it returns.
void LiveStream::Session::release()
{
    if (m_view)
        m_view->close();
    m_recorder->end();
    m_audio->close();
}

void LiveStream::Session::sourceDescribed(bool hasVideo, bool hasAudio)
{
    m_hasVideo = hasVideo;
    m_hasAudio = hasAudio;
}

void LiveStream::Session::sourcePlays()
{
    m_playAnswered = true;
    m_lastSign = media::SteadyClock::now();
    wantKeyFrame();
}

void LiveStream::Session::sourceVideo(const media::AccessUnit &unit)
{
    if (m_state == State::Ended)
        return;
    m_lastSign = unit.arrived;
    m_memory.takeFrame(unit);
    if (m_view)
        m_view->takeFrame(unit);
    m_recorder->takeFrame(unit);
    m_stats.takeFrame(unit);
    if (unit.caps.get() != m_caps.get()) {
        m_caps = unit.caps;
        readSize(unit.caps.get());
    }
    if (unit.key && !m_keyReceived.exchange(true))
        checkFirstPicture();
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

void LiveStream::Session::sourceAudio(const media::AudioUnit &unit)
{
    if (m_state == State::Ended)
        return;
    m_memory.takeAudio(unit);
    m_recorder->takeAudio(unit);
    m_audio->takeAudio(unit);
}

void LiveStream::Session::sourceEnded(StreamEnd reason)
{
    if (m_state.exchange(State::Ended) == State::Ended)
        return;
    // Not here: this is a thread of the pipeline that has to be closed.
    media::mediaWorkers().run([self = shared_from_this(), reason] {
        self->release();
        self->closeSource();
        if (self->m_listener.ended)
            self->tell([&] { self->m_listener.ended(reason); });
    });
}

void LiveStream::Session::sourceTransportRefused()
{
    media::mediaWorkers().run([self = shared_from_this()] {
        bool again = false;
        {
            std::lock_guard lock(self->m_sourceMutex);
            again = self->m_source && self->m_transport == Transport::Interleaved;
            if (again)
                self->m_source.reset();
        }
        if (again)
            self->openSource(Transport::Udp);
        else
            self->sourceEnded(StreamEnd::Failed);
    });
}

void LiveStream::Session::tick()
{
    const auto now = media::SteadyClock::now();
    if (m_state == State::Ended)
        return;
    if (!m_playAnswered) {
        if (now - m_started.load() > connectLimit)
            sourceEnded(StreamEnd::Failed);
        return;
    }
    if (now - m_lastSign.load() > silenceLimit) {
        sourceEnded(StreamEnd::Stalled);
        return;
    }
    if (now - m_lastKeepAlive >= keepAlivePeriod) {
        m_lastKeepAlive = now;
        media::mediaWorkers().run([weak = weak_from_this()] {
            if (const auto self = weak.lock())
                self->keepAlive();
        });
    }
}

void LiveStream::Session::readSize(GstCaps *caps)
{
    int width = 0;
    int height = 0;
    const GstStructure *format = gst_caps_get_structure(caps, 0);
    if (gst_structure_get_int(format, "width", &width) &&
        gst_structure_get_int(format, "height", &height)) {
        m_width = width;
        m_height = height;
    }
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
