#pragma once

#include "platform/base/loop_thread.h"
#include "platform/rtsp/receiver.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A receiver on its thread, and what it told.
class Viewer : public rtsp::Receiver::Client
{
public:
    explicit Viewer(rtsp::StreamRequest request)
    {
        run([&] { m_receiver = std::make_unique<rtsp::Receiver>(*this, std::move(request)); });
    }
    explicit Viewer(const std::string &url, const std::string &user = {},
                    const std::string &password = {})
        : Viewer(rtsp::StreamRequest{.url = url, .username = user, .password = password})
    {
    }
    ~Viewer() override
    {
        run([&] { m_receiver.reset(); });
    }
    Viewer(const Viewer &) = delete;
    Viewer &operator=(const Viewer &) = delete;

    void start()
    {
        run([&] { m_receiver->start(); });
    }
    void close()
    {
        run([&] { m_receiver->close(); });
    }
    /// On the receiver's thread.
    static void run(const std::function<void()> &work)
    {
        static base::LoopThread *const thread = base::LoopThread::create("viewers").release();
        thread->postAndWait(work);
    }
    rtsp::Receiver &receiver() { return *m_receiver; }

    /// Each waits at most 40 s.
    bool waitForFrames(int count)
    {
        return waitFor([&] { return m_frames >= count || m_end; }) && frames() >= count;
    }
    bool waitForSounds(int count)
    {
        return waitFor([&] { return m_sounds >= count || m_end; }) && sounds() >= count;
    }
    bool waitForPlays()
    {
        return waitFor([&] { return m_plays > 0 || m_end; }) && playCount() > 0;
    }
    std::optional<rtsp::StreamEnd> waitForEnd()
    {
        waitFor([&] { return m_end.has_value(); });
        const std::lock_guard lock(m_mutex);
        return m_end;
    }
    /// Called on the receiver's thread with each frame.
    void onFrame(std::function<void()> work)
    {
        const std::lock_guard lock(m_mutex);
        m_onFrame = std::move(work);
    }

    /// Those that came until now.
    std::vector<base::AccessUnit> units() const { return locked(m_units); }
    int frames() const { return locked(m_frames); }
    int playCount() const { return locked(m_plays); }
    int descriptions() const { return locked(m_descriptions); }
    int ends() const { return locked(m_ends); }
    bool hasVideo() const { return locked(m_hasVideo); }
    bool hasAudio() const { return locked(m_hasAudio); }
    int sounds() const { return locked(m_sounds); }
    std::string text() const { return locked(m_text); }
    std::shared_ptr<const base::AudioFormat> sound() const { return locked(m_sound); }
    rtsp::StreamFailure failure() const { return locked(m_failure); }

private:
    template <typename T>
    T locked(const T &value) const
    {
        const std::lock_guard lock(m_mutex);
        return value;
    }
    bool waitFor(const std::function<bool()> &condition)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(40), condition);
    }
    void note(const std::function<void()> &work)
    {
        const std::lock_guard lock(m_mutex);
        work();
        m_changed.notify_all();
    }

    void described(bool hasVideo, bool hasAudio,
                   const std::shared_ptr<const base::AudioFormat> &sound) override
    {
        note([&] {
            ++m_descriptions;
            m_hasVideo = hasVideo;
            m_hasAudio = hasAudio;
            m_sound = sound;
        });
    }
    void plays() override
    {
        note([&] { ++m_plays; });
    }
    void video(const base::AccessUnit &unit) override
    {
        std::function<void()> work;
        note([&] {
            ++m_frames;
            if (m_units.size() < maxUnits)
                m_units.push_back(unit);
            work = m_onFrame;
        });
        if (work)
            work();
    }
    void audio(const base::AudioUnit &) override
    {
        note([&] { ++m_sounds; });
    }
    void lostPackets() override {}
    void ended(const rtsp::StreamFailure &failure) override
    {
        note([&] {
            ++m_ends;
            m_end = failure.end;
            m_text = failure.text;
            m_failure = failure;
        });
    }

    static constexpr size_t maxUnits = 1000;

    mutable std::mutex m_mutex; ///< for what follows
    std::vector<base::AccessUnit> m_units;
    std::condition_variable m_changed;
    int m_frames = 0;
    int m_sounds = 0;
    int m_plays = 0;
    int m_descriptions = 0;
    int m_ends = 0;
    bool m_hasVideo = false;
    bool m_hasAudio = false;
    std::shared_ptr<const base::AudioFormat> m_sound;
    std::optional<rtsp::StreamEnd> m_end;
    std::string m_text;
    rtsp::StreamFailure m_failure;
    std::function<void()> m_onFrame;
    std::unique_ptr<rtsp::Receiver> m_receiver; ///< its thread
};
