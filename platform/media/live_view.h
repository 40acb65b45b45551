#pragma once

#include "platform/media/frame_taker.h"
#include "platform/media/gop_buffer.h"
#include "platform/media/picture_chain.h"
#include "platform/media/window_watch.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace media {

/// What a view has done so far.
struct ViewFigures
{
    uint64_t drawn = 0;   ///< pictures that were handed to the window
    uint64_t dropped = 0; ///< frames that were left out because the machine could not keep up
    SteadyClock::duration delay{}; ///< from the arrival of a frame until it was drawn, mean
    /// Arrival of the frame on the window; nullopt when there is none.
    std::optional<SteadyClock::time_point> shownArrived;
    std::string decoder; ///< name; empty before the first frame
};

/**
 * Shows a stream on a window: decodes each frame as it arrives and draws the newest. A window that
 * cannot be seen costs nothing; when it is seen again its last frame is shown at once from memory.
 * A machine that cannot keep up first draws less, then drops non-reference frames, then skips to
 * the next key frame, so latency does not accumulate.
 */
class LiveView : public FrameTaker, public std::enable_shared_from_this<LiveView>
{
public:
    /// memory: gets each frame before this does; must outlive it. wantKeyFrame, and changed when
    /// hasShown() or isUnseen() changes: called on a library thread, must not wait; may be empty.
    LiveView(uintptr_t window, const GopBuffer &memory, std::function<void()> wantKeyFrame,
             std::function<void()> changed = {});
    ~LiveView() override;

    /// Opens the sink. On a media worker.
    void open();
    /// Nothing draws on the window any more when it returns. Any thread but a callback's.
    void close();

    void takeFrame(const AccessUnit &unit) override;
    /// The next frame belongs to another stream. The last picture stays on the window; hasShown()
    /// is false until the next one is drawn. Any thread, never waits.
    void interrupt();
    /// The window changed, as reported by WindowWatch.
    void setWindow(const WindowState &state, bool damaged);

    /// Whether a picture was drawn since the start, or since interrupt(). Any thread.
    bool hasShown() const { return m_hasShown; }
    /// Whether it is known that nobody can see the window, or nothing can be drawn. Any thread.
    bool isUnseen() const { return m_isUnseen; }
    /// Whether frames are decoded as they arrive.
    bool isDecoding() const;
    /// See PictureChain::latest().
    SampleRef latest() const { return m_chain.latest(); }
    /// How many access units were decoded so far.
    uint64_t decoded() const;
    /// Any thread.
    ViewFigures figures() const;

private:
    enum class Stage
    {
        Waiting,
        Ready,
        Closed
    };
    struct Step
    {
        enum class Kind
        {
            Nothing,
            Redraw,
            Decode,
            Reopen
        } kind = Kind::Nothing;
        AccessUnit unit;
        bool show = false;
        WindowState window;
    };

    bool step();
    Step nextStep();
    void schedule();
    static void queueStep(std::shared_ptr<LiveView> self);
    void shedLoad(SteadyClock::time_point now);
    void dropLate(SteadyClock::time_point now);
    void noteShown(SteadyClock::time_point arrived);
    bool replayMemory();
    void setUnseen(bool unseen);

    const uintptr_t m_windowHandle;
    const GopBuffer &m_memory;
    const std::function<void()> m_wantKeyFrame;
    const std::function<void()> m_changed;
    PictureChain m_chain; ///< the thread that set m_busy
    std::atomic<bool> m_hasShown = false;
    std::atomic<bool> m_isUnseen = false;

    mutable std::mutex m_mutex; ///< protects everything below
    std::condition_variable m_idle;
    std::deque<AccessUnit> m_queue;
    WindowState m_window;
    Stage m_stage = Stage::Waiting;
    int m_watch = 0;
    bool m_isClosed = false;  ///< nothing draws any more
    bool m_scheduled = false; ///< on its way to a decoding thread
    bool m_busy = false;      ///< a thread uses the chain
    bool m_broken = false;    ///< the chain has to be opened again
    bool m_redraw = false;
    bool m_waitForKey = true;
    uint64_t m_lastQueued = 0;
    std::atomic<uint64_t> m_interrupted = 0; ///< last frame of the stream before
    uint64_t m_replayEnd = 0; ///< up to here frames come from memory and are not shown
    uint64_t m_decoded = 0;
    ViewFigures m_figures; ///< without the decoder
    SteadyClock::time_point m_replayStart;
    SteadyClock::time_point m_lastShown;
    SteadyClock::time_point m_lastReopen;
};

} // namespace media
