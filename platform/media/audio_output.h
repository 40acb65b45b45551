#pragma once

#include "platform/media/frame_taker.h"
#include "platform/media/sound_output.h"

#include <functional>
#include <memory>
#include <mutex>

namespace media {

/**
 * Plays a camera's audio. A silent stream costs nothing: decoder and sound device are there only
 * while the volume is above 0. They are a separate pipeline, so that a device that is missing or
 * fails never touches the video; it is tried again some seconds later.
 */
class AudioOutput : public FrameTaker, public std::enable_shared_from_this<AudioOutput>
{
public:
    /// makeSink: see makeSoundSink().
    using SinkMaker = std::function<GstElement *()>;
    explicit AudioOutput(SinkMaker makeSink = &makeSoundSink) : m_makeSink(std::move(makeSink)) {}
    ~AudioOutput() override;

    void takeFrame(const AccessUnit &) override {}
    void takeAudio(const AudioUnit &unit) override;
    /// 0 to 200, 100 is the level of the source. Any thread.
    void setVolume(int percent);
    /// The next sound belongs to another stream, which may be of another format.
    void interrupt();
    /// Nothing is played from now on; the device is released behind.
    void close();

private:
    struct Pipeline;

    void open(const CapsRef &caps);
    void release();
    static GstBusSyncReply readMessage(GstBus *, GstMessage *message, gpointer self);

    const SinkMaker m_makeSink;

    std::mutex m_mutex; ///< protects everything below
    std::shared_ptr<Pipeline> m_pipeline;
    int m_volume = 0;
    bool m_opening = false;
    bool m_closed = false;
    SteadyClock::time_point m_nextTry;
};

} // namespace media
