#include "platform/cammgr/talk_back.h"

#include "platform/base/access_unit.h"
#include "platform/cammgr/cammgr.h"
#include "platform/cammgr/io_thread.h"
#include "platform/media/microphone.h"
#include "platform/rtsp/back_channel.h"

#include <pthread.h>

#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

namespace cammgr {
namespace {

using namespace std::chrono_literals;
using base::SteadyClock;
using media::VoiceCodec;

/// How long the thread may take to notice that it should end.
constexpr auto turn = 50ms;
/// A client that requests a talk again and again that cannot be started costs nothing for this
/// long.
constexpr auto failurePause = 30s;

/// What the microphone has to give for that format, one of those that a back channel chooses.
media::VoiceFormat voiceFormatOf(const rtsp::PayloadFormat &format)
{
    media::VoiceFormat voice{.codec = VoiceCodec::AacLc,
                             .rate = format.clockRate,
                             .channels = format.channels,
                             .bitRate = 0};
    const std::string_view encoding = format.encoding;
    if (encoding == "PCMU") {
        voice.codec = VoiceCodec::MuLaw;
    } else if (encoding == "PCMA") {
        voice.codec = VoiceCodec::ALaw;
    } else if (const size_t dash = encoding.find("G726-"); dash != std::string_view::npos) {
        voice.codec = dash == 0 ? VoiceCodec::G726 : VoiceCodec::G726Aal2;
        voice.bitRate = std::stoi(std::string(encoding.substr(dash + 5))) * 1000;
    }
    return voice;
}

/// The camera has answered that it does not have such a stream, rather than that it is not there
/// or does not know the login.
bool isNotTaken(rtsp::StreamEnd reason)
{
    return reason == rtsp::StreamEnd::NoVideo || reason == rtsp::StreamEnd::NotFound ||
           reason == rtsp::StreamEnd::PathRefused;
}

} // namespace

/// One talk: everything between start() and the end of its session and its thread. It holds itself
/// until then.
class TalkBack::Run : public std::enable_shared_from_this<Run>, public rtsp::BackChannel::Client
{
public:
    Run(rtsp::StreamRequest camera, std::function<void()> ended)
        : m_camera(std::move(camera))
        , m_ended(std::move(ended))
    {
    }

    /// before: the talk before this one, or null; cameras take one at a time.
    void begin(const std::shared_ptr<Run> &before)
    {
        ioThread().post([self = shared_from_this(), before] {
            if (before)
                before->whenGone([self] { self->open(); });
            else
                self->open();
        });
    }
    void requestStop()
    {
        {
            const std::lock_guard lock(m_mutex);
            if (std::exchange(m_stopWanted, true))
                return;
        }
        ioThread().post([self = shared_from_this()] { self->closeChannel(); });
    }
    bool isRunning() const
    {
        const std::lock_guard lock(m_mutex);
        return !m_stopWanted && !m_isDone;
    }
    /// See TalkBack::failure().
    int failure() const
    {
        const std::lock_guard lock(m_mutex);
        return m_isDone && !m_stopWanted && SteadyClock::now() - m_doneAt < failurePause ? m_failure
                                                                                         : 0;
    }

private:
    void whenGone(std::function<void()> next);
    void open();
    void opened(const rtsp::PayloadFormat &format) override;
    void ended(rtsp::StreamEnd reason, const std::string &text) override;
    void closeChannel();
    void partGone(bool &part);
    void talk(const media::VoiceFormat &format);
    void finish(int failure);
    bool stopWanted() const
    {
        const std::lock_guard lock(m_mutex);
        return m_stopWanted || m_isDone;
    }

    const rtsp::StreamRequest m_camera;
    const std::function<void()> m_ended;

    // The I/O thread.
    std::unique_ptr<rtsp::BackChannel> m_channel;
    bool m_isChannelGone = false; ///< the camera has let go of it
    bool m_isThreadGone = true;
    bool m_hasOpened = false;
    std::function<void()> m_next; ///< what waits for both

    mutable std::mutex m_mutex; ///< for the rest
    bool m_stopWanted = false;
    bool m_isDone = false;
    int m_failure = 0; ///< a CAMMGR_TALK_ value
    SteadyClock::time_point m_doneAt;
};

void TalkBack::Run::whenGone(std::function<void()> next)
{
    if (m_isChannelGone && m_isThreadGone)
        next();
    else
        m_next = std::move(next);
}

void TalkBack::Run::open()
{
    if (stopWanted()) {
        closeChannel();
        return;
    }
    m_channel = std::make_unique<rtsp::BackChannel>(*this, m_camera);
    m_channel->start();
}

void TalkBack::Run::opened(const rtsp::PayloadFormat &format)
{
    if (std::exchange(m_hasOpened, true) || stopWanted())
        return;
    m_isThreadGone = false;
    std::thread([self = shared_from_this(), voice = voiceFormatOf(format)] {
        pthread_setname_np(pthread_self(), "cammgr-talk");
        self->talk(voice);
        ioThread().post([self] { self->partGone(self->m_isThreadGone); });
    }).detach();
}

/// On the talk's own thread, until it is stopped or fails.
void TalkBack::Run::talk(const media::VoiceFormat &format)
{
    media::Microphone microphone(format);
    while (!stopWanted()) {
        std::optional<media::Microphone::Piece> piece = microphone.take(turn);
        if (piece) {
            ioThread().post([self = shared_from_this(), piece = std::move(*piece)] {
                if (self->m_channel)
                    self->m_channel->send(piece.sound, piece.time);
            });
        } else if (microphone.hasFailed()) {
            finish(CAMMGR_TALK_NO_MICROPHONE);
            ioThread().post([self = shared_from_this()] { self->closeChannel(); });
        }
    }
}

void TalkBack::Run::ended(rtsp::StreamEnd reason, const std::string &)
{
    finish(isNotTaken(reason) ? CAMMGR_TALK_NOT_TAKEN : CAMMGR_TALK_FAILED);
    closeChannel();
}

void TalkBack::Run::closeChannel()
{
    const auto closed = [self = shared_from_this()] { self->partGone(self->m_isChannelGone); };
    if (const auto channel = std::move(m_channel))
        channel->close(closed);
    else if (!m_isChannelGone)
        closed();
}

void TalkBack::Run::partGone(bool &part)
{
    part = true;
    if (!m_isChannelGone || !m_isThreadGone)
        return;
    if (const auto next = std::exchange(m_next, nullptr))
        next();
}

void TalkBack::Run::finish(int failure)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_isDone || m_stopWanted)
            return;
        m_isDone = true;
        m_failure = failure;
        m_doneAt = SteadyClock::now();
    }
    if (m_ended)
        m_ended();
}

void TalkBack::start(const rtsp::StreamRequest &camera)
{
    if (isRunning() || failure() != 0)
        return;
    const std::shared_ptr<Run> before =
        std::exchange(m_run, std::make_shared<Run>(camera, m_ended));
    m_run->begin(before);
}

void TalkBack::stop()
{
    if (m_run)
        m_run->requestStop();
}

int TalkBack::failure() const
{
    return m_run ? m_run->failure() : 0;
}

bool TalkBack::isRunning() const
{
    return m_run && m_run->isRunning();
}

} // namespace cammgr
