#include "platform/cammgr/still_fetch.h"

#include "platform/cammgr/io_thread.h"
#include "platform/media/left_overs.h"
#include "platform/media/still_picture.h"
#include "platform/media/worker_pool.h"

#include <utility>

namespace cammgr {
namespace {

using namespace std::chrono_literals;

/// Of a key frame, or of what came since one.
constexpr auto decodeBudget = 3s;

} // namespace

StillFetch::~StillFetch() = default;

void StillFetch::start(std::string path, std::chrono::milliseconds limit, Done done)
{
    m_path = std::move(path);
    m_done = std::move(done);
    ++m_number;
    m_limit.start(limit, [this] { giveUp(); });
}

void StillFetch::cancel()
{
    m_done = nullptr;
    ++m_number;
    m_limit.stop();
    m_receiver.reset();
}

void StillFetch::store(std::string jpeg)
{
    work([path = m_path, jpeg = std::move(jpeg)] {
        media::tidyFolderOf(path);
        return media::storeJpeg(jpeg, path);
    });
}

void StillFetch::decode(std::vector<media::AccessUnit> frames)
{
    work([path = m_path, frames = std::move(frames)] {
        media::tidyFolderOf(path);
        return media::writeJpeg(media::decodeLast(frames, decodeBudget), path);
    });
}

/// Runs a job that writes the file on a media worker: the disk may take its time.
void StillFetch::work(std::function<int()> job)
{
    media::mediaWorkers().run([weak = weak_from_this(), number = m_number, job = std::move(job)] {
        const bool written = job() == 0;
        ioThread().post([weak, number, written] {
            const auto self = weak.lock();
            if (self && number == self->m_number)
                self->finish(written);
        });
    });
}

void StillFetch::receive(const rtsp::StreamRequest &request, std::function<void()> plays,
                         std::function<void(const rtsp::StreamFailure &)> failed)
{
    m_plays = std::move(plays);
    m_failed = std::move(failed);
    // The media framework is loaded on a media worker, which may take long.
    media::mediaWorkers().run([weak = weak_from_this(), number = m_number, request] {
        ioThread().post([weak, number, request] {
            const auto self = weak.lock();
            if (!self || number != self->m_number)
                return;
            self->m_receiver = std::make_unique<rtsp::Receiver>(*self, request);
            self->m_receiver->start();
        });
    });
}

void StillFetch::plays()
{
    m_plays();
}

void StillFetch::video(const base::AccessUnit &unit)
{
    if (!unit.key)
        return;
    decode({m_wrapper.wrap(unit)});
    m_receiver.reset();
}

void StillFetch::ended(const rtsp::StreamFailure &failure)
{
    m_receiver.reset();
    m_failed(failure);
}

void StillFetch::finish(bool written)
{
    const Done done = std::exchange(m_done, nullptr);
    cancel();
    if (done)
        done(written);
}

} // namespace cammgr
