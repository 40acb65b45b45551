#include "platform/media/live_view.h"

#include "platform/media/worker_pool.h"

#include <algorithm>

namespace media {

namespace {

using namespace std::chrono_literals;

// How long the oldest frame may wait before frames are dropped: first non-reference frames, then
// all up to a key frame.
constexpr auto lateLimit = 150ms;
constexpr auto hopelessLimit = 400ms;
// However much waits, something is drawn this often.
constexpr auto longestUndrawn = 100ms;
constexpr auto reopenPause = 1s;
// A window that is seen again may take this long to catch up from a key frame far back.
constexpr auto longestReplay = 2s;

} // namespace

LiveView::LiveView(uintptr_t window, const GopBuffer &memory, std::function<void()> wantKeyFrame,
                   std::function<void()> changed)
    : m_windowHandle(window)
    , m_memory(memory)
    , m_wantKeyFrame(std::move(wantKeyFrame))
    , m_changed(std::move(changed))
    , m_chain(window)
{
}

LiveView::~LiveView()
{
    close();
}

void LiveView::open()
{
    {
        std::lock_guard lock(m_mutex);
        if (m_stage != Stage::Waiting || m_watch != 0)
            return;
        m_busy = true;
    }
    const bool opened = m_chain.open();
    const std::weak_ptr<LiveView> self = weak_from_this();
    std::unique_lock lock(m_mutex);
    m_busy = false;
    m_idle.notify_all();
    if (m_stage == Stage::Closed)
        return;
    if (!opened) {
        lock.unlock();
        g_log("cammgr", G_LOG_LEVEL_WARNING, "nothing can be drawn on this display");
        setUnseen(true);
        return;
    }
    m_stage = Stage::Ready;
    m_watch =
        WindowWatch::instance().add(m_windowHandle, [self](const WindowState &state, bool damaged) {
            if (const auto view = self.lock())
                view->setWindow(state, damaged);
        });
}

void LiveView::close()
{
    int watch = 0;
    {
        std::unique_lock lock(m_mutex);
        if (m_stage == Stage::Closed) {
            // Another thread closes it: nobody may draw when either returns.
            m_idle.wait(lock, [this] { return m_isClosed; });
            return;
        }
        m_stage = Stage::Closed;
        m_queue.clear();
        m_idle.wait(lock, [this] { return !m_busy; });
        watch = std::exchange(m_watch, 0);
    }
    // Outside the lock: a handler that is running takes it.
    if (watch != 0)
        WindowWatch::instance().remove(watch);
    m_chain.close();
    std::lock_guard lock(m_mutex);
    m_isClosed = true;
    m_idle.notify_all();
}

void LiveView::takeFrame(const AccessUnit &unit)
{
    bool needKey = false;
    {
        std::lock_guard lock(m_mutex);
        if (m_stage == Stage::Closed || !m_window.visible || unit.number <= m_lastQueued)
            return;
        if (m_waitForKey && !unit.key) {
            // A decoder that was lost comes back from memory as soon as it may.
            schedule();
            return;
        }
        m_waitForKey = false;
        const bool replaying = !m_queue.empty() && m_queue.front().number <= m_replayEnd;
        m_queue.push_back(unit);
        m_lastQueued = unit.number;
        // What comes while memory is replayed is caught up with, not left out.
        if (replaying && unit.arrived - m_replayStart < longestReplay)
            m_replayEnd = unit.number;
        else
            shedLoad(unit.due());
        needKey = m_waitForKey;
        schedule();
    }
    if (needKey && m_wantKeyFrame)
        m_wantKeyFrame();
}

void LiveView::interrupt()
{
    std::lock_guard lock(m_mutex);
    m_queue.clear();
    m_waitForKey = true;
    m_interrupted = m_lastQueued;
    m_hasShown = false;
}

void LiveView::setWindow(const WindowState &state, bool damaged)
{
    bool needKey = false;
    {
        std::lock_guard lock(m_mutex);
        if (m_stage == Stage::Closed)
            return;
        const WindowState before = std::exchange(m_window, state);
        if (before.visible && !state.visible)
            m_queue.clear();
        if (!before.visible && state.visible)
            needKey = !replayMemory();
        m_redraw |= state.visible && (damaged || !(before == state));
        schedule();
    }
    setUnseen(!state.visible);
    if (needKey && m_wantKeyFrame)
        m_wantKeyFrame();
}

/// Called without the lock.
void LiveView::setUnseen(bool unseen)
{
    if (m_isUnseen.exchange(unseen) != unseen && m_changed)
        m_changed();
}

bool LiveView::isDecoding() const
{
    std::lock_guard lock(m_mutex);
    return m_stage == Stage::Ready && m_window.visible;
}

ViewFigures LiveView::figures() const
{
    ViewFigures figures;
    {
        std::lock_guard lock(m_mutex);
        figures = m_figures;
    }
    figures.decoder = m_chain.decoderName();
    return figures;
}

/// Called with the lock.
void LiveView::noteShown(SteadyClock::time_point arrived)
{
    constexpr int memory = 16; // frames in the mean
    const SteadyClock::duration delay = SteadyClock::now() - arrived;
    if (m_figures.drawn++ == 0)
        m_figures.delay = delay;
    else
        m_figures.delay += (delay - m_figures.delay) / memory;
    m_figures.shownArrived = arrived;
}

uint64_t LiveView::decoded() const
{
    std::lock_guard lock(m_mutex);
    return m_decoded;
}

/// Called with the lock. Queues what came since the last key frame; false when that is not known.
bool LiveView::replayMemory()
{
    const std::vector<AccessUnit> frames = m_memory.frames();
    m_queue.assign(frames.begin(), frames.end());
    m_waitForKey = frames.empty();
    if (frames.empty())
        return false;
    m_lastQueued = m_replayEnd = frames.back().number;
    m_replayStart = SteadyClock::now();
    return true;
}

/// Called with the lock.
void LiveView::schedule()
{
    if (m_scheduled || m_stage != Stage::Ready || (m_queue.empty() && !m_redraw && !m_broken))
        return;
    m_scheduled = true;
    queueStep(shared_from_this());
}

/// One step at a time, so that all views take turns.
void LiveView::queueStep(std::shared_ptr<LiveView> self)
{
    decodeWorkers().run([self = std::move(self)] {
        if (self->step())
            queueStep(self);
    });
}

/// Called with the lock, after a frame was queued.
void LiveView::shedLoad(SteadyClock::time_point now)
{
    const auto late = [&] { return now - m_queue.front().due(); };
    if (late() < lateLimit)
        return;
    const size_t before = m_queue.size();
    dropLate(now);
    m_figures.dropped += before - m_queue.size();
}

/// Called with the lock, with frames in the queue that are late.
void LiveView::dropLate(SteadyClock::time_point now)
{
    const auto late = [&] { return now - m_queue.front().due(); };
    m_queue.erase(std::remove_if(m_queue.begin(), m_queue.end(),
                                 [](const AccessUnit &unit) { return !unit.reference; }),
                  m_queue.end());
    if (m_queue.empty() || late() < hopelessLimit)
        return;
    const auto key = std::find_if(m_queue.rbegin(), m_queue.rend(),
                                  [](const AccessUnit &unit) { return unit.key; });
    if (key == m_queue.rend()) {
        m_queue.clear();
        m_waitForKey = true;
    } else {
        m_queue.erase(m_queue.begin(), std::prev(key.base()));
    }
}

LiveView::Step LiveView::nextStep()
{
    std::lock_guard lock(m_mutex);
    Step next;
    next.window = m_window;
    const auto now = SteadyClock::now();
    if (m_stage != Stage::Ready) {
        m_scheduled = false;
        return next;
    }
    if (m_broken) {
        // The queued frames depend on frames that are lost with the decoder.
        m_queue.clear();
        m_waitForKey = true;
        if (now - m_lastReopen < reopenPause) {
            m_scheduled = false;
            m_redraw = false;
            return next;
        }
        m_lastReopen = now;
        next.kind = Step::Kind::Reopen;
    } else if (m_redraw) {
        m_redraw = false;
        next.kind = Step::Kind::Redraw;
    } else if (!m_queue.empty()) {
        next.kind = Step::Kind::Decode;
        next.unit = std::move(m_queue.front());
        m_queue.pop_front();
        next.show = next.unit.number >= m_replayEnd &&
                    (m_queue.empty() || now - m_lastShown >= longestUndrawn);
        if (next.show)
            m_lastShown = now;
    } else {
        m_scheduled = false;
        return next;
    }
    m_busy = true;
    return next;
}

/// One piece of work on a decoding thread; true when there is more and it may go on here.
bool LiveView::step()
{
    const Step now = nextStep();
    const uint64_t drawnBefore = now.kind == Step::Kind::Nothing ? 0 : m_chain.drawn();
    bool good = true;
    switch (now.kind) {
    case Step::Kind::Nothing:
        return false;
    case Step::Kind::Redraw:
        m_chain.setWindowSize(now.window.width, now.window.height);
        m_chain.redraw();
        break;
    case Step::Kind::Decode:
        good = m_chain.decode(now.unit, now.show);
        if (m_chain.drawn() > drawnBefore && now.unit.number > m_interrupted &&
            !m_hasShown.exchange(true) && m_changed)
            m_changed();
        break;
    case Step::Kind::Reopen:
        good = m_chain.open();
        break;
    }

    bool needKey = false;
    {
        std::lock_guard lock(m_mutex);
        m_busy = false;
        m_idle.notify_all();
        m_broken = !good;
        if (now.kind == Step::Kind::Decode) {
            ++m_decoded;
            if (m_chain.drawn() > drawnBefore)
                noteShown(now.unit.arrived);
        }
        if (now.kind == Step::Kind::Reopen && good && m_stage == Stage::Ready)
            needKey = !replayMemory();
    }
    if (needKey && m_wantKeyFrame)
        m_wantKeyFrame();
    return true;
}

} // namespace media
