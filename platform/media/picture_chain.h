#pragma once

#include "platform/media/frame_taker.h"
#include "platform/media/pad_feed.h"

#include <atomic>
#include <mutex>
#include <string>

namespace media {

/**
 * Decoder, scaler and window sink, without its own thread: all calls come from one thread at a time
 * and do their work there, except latest(), which any thread may call.
 */
class PictureChain
{
public:
    explicit PictureChain(uintptr_t window) : m_window(window) {}
    ~PictureChain();
    PictureChain(const PictureChain &) = delete;
    PictureChain &operator=(const PictureChain &) = delete;

    /// Opens the sink; false when nothing can be drawn here.
    bool open();
    /// Nothing draws on the window any more when it returns.
    void close();

    /// Decodes, and draws the result if requested. False when the chain is broken and has to be
    /// opened again.
    bool decode(const AccessUnit &unit, bool show);
    void setWindowSize(int width, int height);
    /// Draws the latest picture again, at the size that the window has now.
    void redraw();
    /// How many pictures were handed to the window; the caller's thread.
    uint64_t drawn() const { return m_drawn; }
    /// Name of the decoder; empty before the first frame. Any thread.
    std::string decoderName() const;
    /// The frame that was decoded last, in the size of the stream; empty when there is none.
    SampleRef latest() const;

private:
    static GstBusSyncReply readMessage(GstBus *, GstMessage *message, gpointer self);
    static GstPadProbeReturn takePicture(GstPad *pad, GstPadProbeInfo *info, gpointer self);
    bool addDecoder(GstCaps *caps);
    void fit();

    const uintptr_t m_window;
    base::GObjectPtr<GstElement> m_pipeline;
    // Owned by the pipeline.
    GstElement *m_decoder = nullptr;
    GstElement *m_scale = nullptr;
    GstElement *m_sink = nullptr;
    PadFeed m_feed;
    bool m_hardware = false;
    bool m_hardwareFailed = false;
    bool m_show = true;
    uint64_t m_drawn = 0;
    int m_windowWidth = 0;
    int m_windowHeight = 0;
    std::atomic<bool> m_failed = false;

    mutable std::mutex m_pictureMutex; ///< protects what is below
    BufferRef m_picture;
    CapsRef m_pictureCaps;
    std::string m_decoderName;
};

} // namespace media
