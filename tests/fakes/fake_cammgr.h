#pragma once

#include "platform/cammgr/cammgr.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A camera-manager library scripted by a test. Link `fake_cammgr` in the place of `cammgr`, call
/// reset() before each test, and steer it through this header.
///
/// Left alone it is a camera library that obeys and never answers by itself: Play makes a player
/// play, Stop ends stream, recording and talk-back, Snapshot writes a small JPEG, Stop_Connecting
/// answers an outstanding probe with a failure, Delete is answered. Probes and command batches
/// wait for the test unless `probe` or `replies` say how they are answered.
///
/// The callback always runs on one thread of this library, in the order of the messages, never
/// inside a call. Everything here may be called from any thread except from a callback.
namespace fake_cammgr {

/// How probes are answered.
enum class Probe
{
    ByHand, ///< only by Player::probeOk and the like
    Ok,
    Failed, ///< unreachable
    Refused ///< wrong user name or password
};

/// One call as it came in.
struct Call
{
    std::string name;                   ///< "RtspPlayer_Play"
    std::vector<std::string> texts;     ///< text arguments, in order
    std::vector<std::intptr_t> numbers; ///< number arguments: volume, limit, count, window
    const RtspPlayer *player;           ///< may be null
};

/// What a player answers and does. Set `defaults()` before a session is made, or the script of a
/// player at any time.
struct Script
{
    Probe probe = Probe::ByHand;
    int playing = 0;   ///< set by Play and Stop
    int writing = 0;   ///< a CAMMGR_WRITING value; set by BeginWriting and EndWriting
    int uploading = 0; ///< set by AudioUpload_Play and AudioUpload_Stop
    int mode = 1;
    int hasVideo = 1;
    int hasAudio = 1;
    int width = 640;
    int height = 360;
    int frameRate = 15;              ///< frames per second
    int bitRate = 512000;            ///< bits per second
    bool playPlays = true;           ///< Play sets playing
    bool stopStops = true;           ///< Stop clears playing, writing and uploading
    bool stopEndsProbe = true;       ///< Stop_Connecting answers an outstanding probe: failed
    bool deleteAnswers = true;       ///< Delete is answered with CAMMGR_MSG_DELETED
    bool snapshotWrites = true;      ///< Snapshot writes `snapshotImage`
    std::optional<int> still;        ///< how FetchStill is answered, 0 with a file; unset: by hand
    bool writingWrites = false;      ///< EndWriting leaves base + ".mp4" with a few bytes
    std::string snapshotImage;       ///< bytes of the snapshot; empty: a JPEG of 16x12 pixels
    int reason = CAMMGR_REASON_NONE; ///< answer of GetReason
    std::string reasonDetail;        ///< and its detail
    std::optional<RtspPlayerFigures> figures; ///< of GetFigures; unset: it fails
    std::map<std::string, int> results; ///< result of a call by its name, where 0 is not wanted
    /// Replies to a batch of requests; unset: by hand, with Player::reply.
    std::function<std::vector<std::string>(const std::vector<std::string> &)> replies;
};

/// One player that the program under test has made. Stays readable after the program has
/// deleted it, until reset().
class Player
{
public:
    virtual ~Player() = default;

    virtual const std::string &hostname() const = 0;
    virtual const std::string &username() const = 0;
    virtual const std::string &password() const = 0;
    virtual void *context() const = 0;
    virtual RtspPlayer *handle() const = 0;
    virtual bool deleted() const = 0;
    virtual bool probeOutstanding() const = 0;
    /// Path and native window of the last set-up.
    virtual std::string path() const = 0;
    virtual std::uintptr_t window() const = 0;
    /// Requests of the last batch.
    virtual std::vector<std::string> requests() const = 0;

    virtual Script script() const = 0;
    /// Changes the script under the lock: player->change([](auto &s) { s.playing = 1; });
    virtual void change(const std::function<void(Script &)> &edit) = 0;

    virtual std::vector<Call> calls() const = 0;
    virtual int count(const std::string &name) const = 0;
    /// The last call of that name.
    virtual std::optional<Call> last(const std::string &name) const = 0;
    virtual void forgetCalls() = 0;

    /// Answers, also without a probe and as often as wanted.
    virtual void probeOk() = 0;
    virtual void probeFailed(int error = CAMMGR_ERROR_UNREACHABLE) = 0;
    /// Answers a batch.
    virtual void reply(const std::vector<std::string> &replies) = 0;
    /// Any message at all; without strings the callback gets a null pointer.
    virtual void send(int message, int countOrError,
                      const std::optional<std::vector<std::string>> &strings = {}) = 0;
};

/// Ends the library's thread, forgets all players, calls and defaults. The program must have let
/// go of its players.
void reset();

/// What players made from now on start with.
void setDefaults(const Script &script);
/// What cammgr_takes_utf8 answers until reset(); 1 at first.
void setTakesUtf8(int answer);
/// The next `times` calls of RtspPlayer_Create give NULL.
void failCreate(int times = 1);

/// All players since reset(), oldest first, the deleted ones too.
std::vector<std::shared_ptr<Player>> players();
/// The newest player for that host name; null when there is none.
std::shared_ptr<Player> player(const std::string &hostname);
std::shared_ptr<Player> lastPlayer();

/// Calls of all players, and those without one, in order.
std::vector<Call> calls();

/// Violations of the contract of the interface by the program, as texts: a call with a
/// deleted player, a delete while playing, a call from the callback ...
std::vector<std::string> contractViolations();

/// Waits until every message sent so far has passed its callback. False after the deadline.
bool waitDelivered(int milliseconds = 20000);

} // namespace fake_cammgr
