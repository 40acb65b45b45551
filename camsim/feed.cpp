#include "camsim/feed.h"

#include <gst/app/gstappsrc.h>

#include <algorithm>

namespace camsim {

namespace {

struct StartWatch
{
    std::shared_ptr<Feed> feed;
    std::function<void()> onStart;
};

GstPadProbeReturn onEvent(GstPad *, GstPadProbeInfo *info, gpointer data)
{
    if (GST_EVENT_TYPE(GST_PAD_PROBE_INFO_EVENT(info)) == GST_EVENT_STREAM_START) {
        const auto *watch = static_cast<StartWatch *>(data);
        watch->feed->started();
        watch->onStart();
    }
    return GST_PAD_PROBE_OK;
}

/// With the time of now, later by what its presentation comes after its decoding (B frames); the
/// element itself stamps what has no time.
void stamp(GstBuffer *unit, GstElement *appsrc)
{
    const GstClockTime shown = GST_BUFFER_PTS(unit);
    const GstClockTime decoded = GST_BUFFER_DTS(unit);
    GST_BUFFER_PTS(unit) = GST_BUFFER_DTS(unit) = GST_CLOCK_TIME_NONE;
    const bool isReordered =
        GST_CLOCK_TIME_IS_VALID(shown) && GST_CLOCK_TIME_IS_VALID(decoded) && shown > decoded;
    if (!isReordered)
        return;
    const GstClockTime now = gst_element_get_current_running_time(appsrc);
    if (!GST_CLOCK_TIME_IS_VALID(now))
        return;
    GST_BUFFER_DTS(unit) = now;
    GST_BUFFER_PTS(unit) = now + (shown - decoded);
}

} // namespace

Feed::Feed(GstElement *appsrc)
{
    g_weak_ref_init(&m_appsrc, appsrc);
}

Feed::~Feed()
{
    g_weak_ref_clear(&m_appsrc);
}

bool Feed::isDead() const
{
    auto *appsrc = static_cast<GstElement *>(g_weak_ref_get(&m_appsrc));
    if (!appsrc)
        return true;
    gst_object_unref(appsrc);
    return false;
}

void Feed::started()
{
    Phase before = m_phase;
    while (!m_phase.compare_exchange_weak(before, {State::Fresh, before.starts + 1}))
        ;
}

void Feed::push(GstBuffer *buffer)
{
    Phase before = m_phase;
    auto *appsrc = static_cast<GstElement *>(g_weak_ref_get(&m_appsrc));
    GstFlowReturn taken = GST_FLOW_FLUSHING;
    if (appsrc) {
        noteGap(before.state);
        GstBuffer *copy = gst_buffer_copy(buffer); // shares the memory
        stamp(copy, appsrc);
        taken = gst_app_src_push_buffer(GST_APP_SRC(appsrc), copy);
        gst_object_unref(appsrc);
    }
    // A restart in between stays a restart.
    m_phase.compare_exchange_strong(
        before, {taken == GST_FLOW_OK ? State::Running : State::Idle, before.starts});
}

void Feed::noteGap(State before)
{
    const auto now = Clock::now();
    if (before == State::Running && now - m_lastPush > m_longestGap.load())
        m_longestGap = now - m_lastPush;
    m_lastPush = now;
}

std::chrono::milliseconds Feed::takeLongestGap()
{
    return std::chrono::ceil<std::chrono::milliseconds>(
        m_longestGap.exchange(Clock::duration::zero()));
}

FeedList::FeedList(std::function<void()> onStart) : m_onStart(std::move(onStart)) {}

void FeedList::attach(GstElement *appsrc)
{
    const auto feed = std::make_shared<Feed>(appsrc);
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_feeds, [](const auto &old) { return old->isDead(); });
        m_feeds.push_back(feed);
    }
    GstPad *pad = gst_element_get_static_pad(appsrc, "src");
    gst_pad_add_probe(pad, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, onEvent,
                      new StartWatch{feed, m_onStart},
                      [](gpointer data) { delete static_cast<StartWatch *>(data); });
    gst_object_unref(pad);
}

FeedList::Feeds FeedList::active()
{
    Feeds result;
    const std::lock_guard lock(m_mutex);
    for (const auto &feed : m_feeds)
        if (feed->state() != Feed::State::Idle)
            result.push_back(feed);
    return result;
}

std::chrono::milliseconds FeedList::takeLongestGap()
{
    std::chrono::milliseconds longest{0};
    for (const auto &feed : active())
        longest = std::max(longest, feed->takeLongestGap());
    return longest;
}

bool FeedList::isWatched(const Feeds &feeds)
{
    return std::any_of(
        feeds.begin(), feeds.end(),
        [](const auto &feed) { return feed->state() == Feed::State::Running; });
}

} // namespace camsim
