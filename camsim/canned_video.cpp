#include "camsim/video_source.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

namespace camsim {

struct CannedVideo::Clip
{
    std::vector<GstBuffer *> units;

    Clip() = default;
    Clip(const Clip &) = delete;
    Clip &operator=(const Clip &) = delete;
    ~Clip()
    {
        for (GstBuffer *unit : units)
            gst_buffer_unref(unit);
    }
};

namespace {

using ClipKey = std::tuple<int, int, int, int, int, int, VideoCodec, H264Profile, int>;

ClipKey keyOf(const VideoSettings &settings, int scene)
{
    return {scene,          settings.width,   settings.height,
            settings.fps,   settings.bitrate, settings.keyDistance(),
            settings.codec, settings.profile, settings.bFrames};
}

std::shared_ptr<const CannedVideo::Clip> encodeClip(const VideoSettings &settings, int scene)
{
    auto clip = std::make_shared<CannedVideo::Clip>();
    Scene picture(scene, "", settings.width, settings.height, false);
    Encoder encoder(
        settings, [&clip](GstBuffer *unit, bool) { clip->units.push_back(gst_buffer_ref(unit)); });
    const int distance = settings.keyDistance();
    const int loops = std::max(1, static_cast<int>(std::ceil(2.0 * settings.fps / distance)));
    const std::time_t clock = std::time(nullptr);
    for (int frame = 0; frame < loops * distance; ++frame) {
        encoder.encode([&](const PictureView &view) {
            picture.draw(view, static_cast<double>(frame) / settings.fps, clock, 0);
        });
    }
    encoder.finish();
    return clip;
}

/// The clip for these settings; encoded at the first call.
std::shared_ptr<const CannedVideo::Clip> findClip(const VideoSettings &settings, int scene)
{
    static std::mutex mutex;
    static std::map<ClipKey, std::weak_ptr<const CannedVideo::Clip>> clips;
    const std::lock_guard lock(mutex);
    std::weak_ptr<const CannedVideo::Clip> &known = clips[keyOf(settings, scene)];
    std::shared_ptr<const CannedVideo::Clip> clip = known.lock();
    if (!clip) {
        clip = encodeClip(settings, scene);
        known = clip;
    }
    return clip;
}

} // namespace

CannedVideo::CannedVideo(Ticker &ticker, const VideoSettings &settings, int scene)
    : VideoSource(ticker, settings)
    , m_scene(scene % Scene::count)
    , m_clip(findClip(settings, m_scene))
{
    start([this](Ticker::Time now) { return tick(now); });
}

CannedVideo::~CannedVideo()
{
    stop();
}

void CannedVideo::forceKeyFrame()
{
    m_rewind = true;
}

void CannedVideo::configure(const VideoSettings &settings)
{
    auto clip = findClip(settings, m_scene);
    const std::lock_guard lock(m_mutex);
    m_settings = settings;
    m_clip = std::move(clip);
    m_rewind = true;
}

Ticker::Time CannedVideo::tick(Ticker::Time now)
{
    const FeedList::Feeds feeds = m_feeds.active();
    if (feeds.empty())
        return Ticker::never();
    if (isEarly(now, feeds))
        return beat();
    std::unique_lock lock(m_mutex);
    const std::shared_ptr<const Clip> clip = m_clip;
    const int fps = m_settings.fps;
    lock.unlock();
    if (clip->units.empty())
        return Ticker::never();
    const bool rewind = m_rewind.exchange(false);
    for (const auto &feed : feeds) {
        if (rewind || feed->state() == Feed::State::Fresh)
            feed->position = 0;
        feed->push(clip->units[feed->position % clip->units.size()]);
        ++feed->position;
    }
    return nextBeat(now, fps);
}

} // namespace camsim
