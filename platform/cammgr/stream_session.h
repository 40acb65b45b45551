#pragma once

#include "platform/cammgr/live_stream.h"
#include "platform/cammgr/playout.h"
#include "platform/cammgr/stream_figures.h"
#include "platform/media/audio_output.h"
#include "platform/media/gop_buffer.h"
#include "platform/media/live_view.h"
#include "platform/media/recorder.h"
#include "platform/media/stream_stats.h"
#include "platform/media/unit_wrapper.h"
#include "platform/rtsp/receiver.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>

namespace cammgr {

/**
 * One stream from start to stop: the receiver, and the sinks of its frames. Where the stream is
 * lost and resumed, the sinks stay, and numbers and times of its frames go on. It lives on behind
 * stop() until its pipelines are destroyed.
 */
class LiveStream::Session : public rtsp::Receiver::Client,
                            public std::enable_shared_from_this<LiveStream::Session>
{
public:
    Session(const StreamRequest &request, const Listener &listener,
            std::shared_ptr<media::ClosingClips> closing);
    ~Session() override;

    void start(const StreamRequest &request, int volume);
    /// Starts the stream again that was lost, on the same window. False when it was not lost.
    bool resume(const StreamRequest &request);
    /// See LiveStream::stop().
    void stop();

    bool isActive() const { return m_state == State::Starting || m_state == State::Playing; }
    bool isPlaying() const;
    bool hasVideo() const { return isActive() && m_hasVideo; }
    bool hasAudio() const { return isActive() && m_hasAudio; }
    void setVolume(int percent) { m_audio->setVolume(percent); }
    int snapshot(const std::string &path);
    int beginWriting(const std::string &basePath, int limitBytes);
    int endWriting() { return m_recorder->end(); }
    bool isWriting() const { return m_recorder->isWriting(); }
    bool isWaitingToWrite() const { return m_recorder->isWaiting(); }
    int frameRate() const { return m_stats.frames(); }
    int bitRate() const { return m_stats.bits(); }
    int width() const { return m_width; }
    int height() const { return m_height; }
    StreamFigures figures() const;
    std::vector<media::AccessUnit> currentFrames() const
    {
        return isPlaying() ? m_memory.frames() : std::vector<media::AccessUnit>();
    }

private:
    enum class State
    {
        Starting,
        Playing,
        Lost, ///< ended by itself; what it has shown and recorded can go on
        Ended
    };

    void described(bool hasVideo, bool hasAudio,
                   const std::shared_ptr<const base::AudioFormat> &sound) override;
    void plays() override;
    void video(const base::AccessUnit &received) override;
    void audio(const base::AudioUnit &unit) override;
    void lostPackets() override;
    void ended(const rtsp::StreamFailure &failure) override;

    void openReceiver(const StreamRequest &request);
    void interrupt();
    void closeReceiver();
    void release();
    void wantKeyFrame();
    void checkFirstPicture();
    void noteFigures();
    void checkDecoding(media::SteadyClock::time_point now);
    void tell(const std::function<void()> &callback);

    const uintptr_t m_window;
    const Listener m_listener;

    std::mutex m_callbackMutex; ///< held while a callback runs; protects m_muted
    bool m_muted = false;

    // The loop thread.
    std::unique_ptr<rtsp::Receiver> m_receiver;
    std::optional<Playout> m_playout; ///< nothing when nothing is drawn
    media::UnitWrapper m_wrapper;
    std::string m_url;
    uint64_t m_lastNumber = 0; ///< of a frame
    uint64_t m_lastTime = 0;   ///< of a frame, ns
    uint64_t m_numberOffset = 0;
    uint64_t m_timeOffset = 0;       ///< ns
    rtsp::MediaStatistics m_counted; ///< before the stream was lost
    std::shared_ptr<const base::VideoFormat> m_format;
    std::shared_ptr<const base::AudioFormat> m_soundFormat;
    media::SteadyClock::time_point m_figuresNoted;
    std::optional<media::SteadyClock::time_point> m_firstKey;
    bool m_toldUndecodable = false;
    bool m_lossBefore = false; ///< the next frame follows a loss

    std::atomic<State> m_state = State::Starting;
    std::atomic<bool> m_hasVideo = false;
    std::atomic<bool> m_hasAudio = false;
    std::atomic<bool> m_keyReceived = false;
    std::atomic<int> m_width = 0;
    std::atomic<int> m_height = 0;
    std::atomic<media::SteadyClock::time_point> m_lastSign; ///< PLAY was answered, or a frame came
    std::atomic<media::SteadyClock::time_point> m_lastKeyAsked;

    mutable std::mutex m_figuresMutex; ///< protects the next
    StreamFigures m_figures;           ///< of the receiver

    media::StreamStats m_stats;
    media::GopBuffer m_memory;
    const std::shared_ptr<media::AudioOutput> m_audio;
    const std::shared_ptr<media::Recorder> m_recorder;
    const std::shared_ptr<media::LiveView> m_view; ///< null when nothing is drawn
};

} // namespace cammgr
