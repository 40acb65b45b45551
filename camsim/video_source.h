#pragma once

#include "camsim/encoder.h"
#include "camsim/feed.h"
#include "camsim/scene.h"
#include "camsim/ticker.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace camsim {

/// What one stream of a camera shows.
struct PictureSettings
{
    int scene = 0;
    std::string name;
    bool timeCode = true;
    bool warm = false; ///< encodes all the time, and new watchers join between two key frames
};

/// The video of one stream: encoded once for all clients, and only while there is one.
class VideoSource
{
public:
    virtual ~VideoSource() = default;
    VideoSource(const VideoSource &) = delete;
    VideoSource &operator=(const VideoSource &) = delete;

    /// A media that receives access units. Any thread.
    void attach(GstElement *appsrc) { m_feeds.attach(appsrc); }
    /// The next frame is a key frame. Any thread.
    virtual void forceKeyFrame() = 0;
    /// New size, rate or key frame distance, in the middle of the stream. Main thread.
    virtual void configure(const VideoSettings &settings) = 0;
    VideoSettings settings() const;
    /// Some media takes frames. Any thread.
    bool isFeeding() { return !m_feeds.active().empty(); }
    /// The longest time from one frame to the next since the last call. Any thread.
    std::chrono::milliseconds takeLongestGap() { return m_feeds.takeLongestGap(); }

protected:
    VideoSource(Ticker &ticker, const VideoSettings &settings);
    /// To be called by the most derived constructor and destructor.
    void start(Ticker::Task task);
    void stop();
    void wake() { m_ticker.wake(*m_task); }
    /// The task was woken by a new client, between two frames of the others.
    bool isEarly(Ticker::Time now, const FeedList::Feeds &feeds) const;
    Ticker::Time beat() const { return m_beat; }
    /// When the frame after the one that was due is due, on a steady beat.
    Ticker::Time nextBeat(Ticker::Time now, int fps);

private:
    Ticker &m_ticker;
    // Shared with media that may outlive this object by a moment.
    const std::shared_ptr<std::atomic<Ticker::Id>> m_task;
    Ticker::Time m_beat{};

protected:
    mutable std::mutex m_mutex; // protects m_settings and what derived classes name
    VideoSettings m_settings;
    FeedList m_feeds;
};

/// Paints and encodes each frame when it is due.
class LiveVideo : public VideoSource
{
public:
    LiveVideo(Ticker &ticker, const VideoSettings &settings, PictureSettings picture);
    ~LiveVideo() override;

    void forceKeyFrame() override;
    void configure(const VideoSettings &settings) override;

private:
    Ticker::Time tick(Ticker::Time now);
    void rebuild(const VideoSettings &settings);
    void deliver(GstBuffer *unit, bool isKey);

    const PictureSettings m_picture;
    std::atomic<bool> m_changed{true};
    std::atomic<bool> m_keyWanted{false};
    // Of the ticker's thread:
    std::unique_ptr<Scene> m_scene;
    std::unique_ptr<Encoder> m_encoder;
    Ticker::Time m_lastUse{};
    // Of the encoder's thread:
    std::vector<std::uint8_t> m_parameterSets;
};

/// Plays a few seconds, encoded beforehand, in a loop. The clips are shared by all cameras.
class CannedVideo : public VideoSource
{
public:
    struct Clip;

    CannedVideo(Ticker &ticker, const VideoSettings &settings, int scene);
    ~CannedVideo() override;

    void forceKeyFrame() override;
    void configure(const VideoSettings &settings) override;

private:
    Ticker::Time tick(Ticker::Time now);

    const int m_scene;
    std::shared_ptr<const Clip> m_clip; // m_mutex
    std::atomic<bool> m_rewind{false};
};

} // namespace camsim
