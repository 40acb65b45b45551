#pragma once

#include "camsim/feed.h"
#include "camsim/ticker.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace camsim {

/// The sound of one camera: a soft tone as G.711 mu-law, while somebody listens.
class AudioSource
{
public:
    /// piece: duration of one packet; a whole part of a second, with up to 1400 bytes.
    AudioSource(Ticker &ticker, int index, std::chrono::milliseconds piece);
    ~AudioSource();
    AudioSource(const AudioSource &) = delete;
    AudioSource &operator=(const AudioSource &) = delete;

    void attach(GstElement *appsrc) { m_feeds.attach(appsrc); }

private:
    Ticker::Time tick(Ticker::Time now);

    Ticker &m_ticker;
    const std::chrono::milliseconds m_piece;
    std::vector<GstBuffer *> m_pieces; ///< one second of sound
    // Shared with media that may outlive this object by a moment.
    const std::shared_ptr<std::atomic<Ticker::Id>> m_task;
    FeedList m_feeds;
    std::size_t m_position = 0; // of the ticker's thread, as m_next
    Ticker::Time m_next{};
};

} // namespace camsim
