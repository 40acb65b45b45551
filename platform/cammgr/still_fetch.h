#pragma once

#include "platform/base/timer.h"
#include "platform/media/frame_taker.h"
#include "platform/media/unit_wrapper.h"
#include "platform/rtsp/receiver.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace cammgr {

/**
 * Makes one still picture of a camera, from what is given to it: a file that the camera has made,
 * or the first key frame of a stream. Files are written and frames decoded on a media worker. Lives
 * on the I/O thread.
 */
class StillFetch : public rtsp::Receiver::Client, public std::enable_shared_from_this<StillFetch>
{
public:
    using Done = std::function<void(bool written)>;

    ~StillFetch() override;

    /// A picture is wanted at path within the limit; done is called once, unless cancel() is
    /// before.
    void start(std::string path, std::chrono::milliseconds limit, Done done);
    bool isWanted() const { return m_done != nullptr; }
    /// Counts the pictures that were wanted: distinguishes a late answer from the expected one.
    unsigned number() const { return m_number; }
    void cancel();

    /// The picture is this JPEG file.
    void store(std::string jpeg);
    /// The picture is the last of these frames, of which the first is a key frame.
    void decode(std::vector<media::AccessUnit> frames);
    /// The picture is the next key frame of this stream. failed: the stream has ended without one;
    /// another may be tried. plays: a key frame would help now.
    void receive(const rtsp::StreamRequest &request, std::function<void()> plays,
                 std::function<void(const rtsp::StreamFailure &)> failed);
    /// There is no picture.
    void giveUp() { finish(false); }

private:
    void described(bool, bool, const std::shared_ptr<const base::AudioFormat> &) override {}
    void plays() override;
    void video(const base::AccessUnit &unit) override;
    void audio(const base::AudioUnit &) override {}
    void lostPackets() override {}
    void ended(const rtsp::StreamFailure &failure) override;

    void work(std::function<int()> job);
    void finish(bool written);

    std::string m_path;
    Done m_done;
    unsigned m_number = 0;
    base::Timer m_limit;
    std::unique_ptr<rtsp::Receiver> m_receiver;
    media::UnitWrapper m_wrapper;
    std::function<void()> m_plays;
    std::function<void(const rtsp::StreamFailure &)> m_failed;
};

} // namespace cammgr
