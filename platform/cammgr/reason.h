#pragma once

#include "platform/base/camera_address.h"
#include "platform/cammgr/cammgr.h"
#include "platform/rtsp/rtsp_probe.h"
#include "platform/rtsp/stream_request.h"

#include <chrono>
#include <mutex>
#include <optional>
#include <string>

namespace cammgr {

/// Why a camera is not shown.
struct Reason
{
    int value = CAMMGR_REASON_NONE; ///< a CAMMGR_REASON_ value
    std::string detail = {};        ///< the bare fact, as cammgr.h tells for each value
};

/// Of a probe that failed at that address of the camera. status: that the camera answered with.
[[nodiscard]] Reason reasonOf(rtsp::ProbeOutcome outcome, const base::CameraAddress &stream,
                              int status = 0);
/// Of a stream.
[[nodiscard]] Reason reasonOf(const rtsp::StreamFailure &failure,
                              const base::CameraAddress &stream);

/**
 * Why the camera of one player is not shown now, as the last probe and the last stream left it. Set
 * on the I/O thread, read on any.
 */
class ReasonBoard
{
public:
    using Time = std::chrono::steady_clock::time_point;

    void probeFailed(Reason reason) { set(std::move(reason), Source::Probe); }
    void probeAnswered() { clear(Source::Probe); }
    void streamFailed(Reason reason) { set(std::move(reason), Source::Stream); }
    /// Nobody wants to see the camera any more.
    void orderVoided() { clear(Source::Stream); }
    void pictureShown();
    /// No login is tried before then; nullopt: it may be tried.
    void setLoginPause(std::optional<Time> until);

    [[nodiscard]] Reason current(Time now = std::chrono::steady_clock::now()) const;

private:
    enum class Source
    {
        Probe,
        Stream
    };
    void set(Reason reason, Source source);
    void clear(Source source);

    mutable std::mutex m_mutex; ///< protects everything below
    Reason m_reason;
    Source m_source = Source::Probe;
    std::optional<Time> m_pausedUntil;
};

/// Copies a text into size bytes, cut on the border of a UTF-8 character; does nothing without
/// room.
void copyCut(const std::string &text, char *room, int size);

} // namespace cammgr
