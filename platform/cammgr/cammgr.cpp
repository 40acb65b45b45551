#include "platform/cammgr/cammgr.h"

#include "platform/base/known_keys.h"
#include "platform/cammgr/io_thread.h"
#include "platform/cammgr/player.h"
#include "platform/cammgr/stream_figures.h"

#include <glib.h>
#include <pthread.h>

#include <algorithm>
#include <exception>
#include <map>
#include <thread>

using cammgr::ioThread;
using cammgr::LiveStream;

namespace {

using PlayerPtr = std::shared_ptr<RtspPlayer>;

constexpr int failure = -1;
constexpr int maxCommands = 1000;
constexpr size_t maxPath = 1024;

/// The handles that are valid: a call with any other does nothing.
class PlayerRegistry
{
public:
    RtspPlayer *add(PlayerPtr player)
    {
        const std::lock_guard lock(m_mutex);
        RtspPlayer *handle = player.get();
        m_players.emplace(handle, std::move(player));
        return handle;
    }
    PlayerPtr find(RtspPlayer *handle) const
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_players.find(handle);
        return found == m_players.end() ? nullptr : found->second;
    }
    PlayerPtr take(RtspPlayer *handle)
    {
        const std::lock_guard lock(m_mutex);
        auto node = m_players.extract(handle);
        return node ? std::move(node.mapped()) : nullptr;
    }

private:
    mutable std::mutex m_mutex;
    std::map<RtspPlayer *, PlayerPtr> m_players;
};

PlayerRegistry &players()
{
    static PlayerRegistry *const registry = new PlayerRegistry;
    return *registry;
}

/// Nothing is thrown across the C interface.
template <class Result, class Call>
Result guarded(Result otherwise, Call call)
{
    try {
        return call();
    } catch (const std::exception &error) {
        g_warning("camera manager: %s", error.what());
        return otherwise;
    }
}

/// call(player), or otherwise for an invalid handle.
template <class Call>
int with(RtspPlayer *handle, int otherwise, Call call)
{
    return guarded(
        otherwise,
        [&] {
            const PlayerPtr player = players().find(handle);
            return player ? call(*player) : otherwise;
        });
}

/// A property of the player's stream; 0 for an invalid handle.
template <class Result>
int ask(RtspPlayer *handle, Result (LiveStream::*question)() const)
{
    return with(
        handle, 0,
        [&](RtspPlayer &player) {
            return player.withStream(
                [&](const LiveStream &stream) { return static_cast<int>((stream.*question)()); });
        });
}

/// A text of the client; what is not UTF-8 counts as empty.
std::string utf8OrEmpty(const char *text)
{
    return text && g_utf8_validate(text, -1, nullptr) ? text : std::string();
}

} // namespace

int cammgr_takes_utf8(void)
{
    return 1;
}

RtspPlayer *RtspPlayer_Create(const char *hostname, const char *username, const char *password,
                              RtspPlayerCallback callback, void *context)
{
    if (!hostname)
        return nullptr;
    return guarded<RtspPlayer *>(nullptr, [&] {
        cammgr::SessionInfo info{.address = base::parseCameraAddress(utf8OrEmpty(hostname)),
                                 .username = utf8OrEmpty(username),
                                 .password = utf8OrEmpty(password),
                                 .callback = callback,
                                 .context = context};
        if (info.username.empty() && info.password.empty()) {
            info.username = info.address.username;
            info.password = info.address.password;
        }
        return players().add(std::make_shared<RtspPlayer>(info));
    });
}

int RtspPlayer_TickAlive(RtspPlayer *player)
{
    return with(
        player, failure,
        [](RtspPlayer &p) {
            p.tickAlive();
            return 0;
        });
}

int RtspPlayer_Stop_Connecting(RtspPlayer *player)
{
    return with(
        player, failure,
        [](RtspPlayer &p) {
            p.stopConnecting();
            return 0;
        });
}

int RtspPlayer_GetMode(RtspPlayer *player)
{
    return with(
        player, 1, [](RtspPlayer &p) { return p.mode(); });
}

int RtspPlayer_SetupP2PliveStream(RtspPlayer *player, const char *path, uintptr_t nativeWindow)
{
    return with(
        player, failure,
        [&](RtspPlayer &p) {
            const std::string text = utf8OrEmpty(path);
            if (text.empty() || text.front() != '/' || text.size() > maxPath ||
                !base::hasNoWhitespace(text))
                return failure;
            return p.setup(text, nativeWindow);
        });
}

int RtspPlayer_Play(RtspPlayer *player)
{
    return with(
        player, failure, [](RtspPlayer &p) { return p.play(); });
}

int RtspPlayer_Stop(RtspPlayer *player)
{
    return with(
        player, failure,
        [](RtspPlayer &p) {
            p.stop();
            return 0;
        });
}

int RtspPlayer_IsPlaying(RtspPlayer *player)
{
    return ask(player, &LiveStream::isPlaying);
}

int RtspPlayer_Delete(RtspPlayer *player)
{
    return guarded(
        failure,
        [&] {
            PlayerPtr last = players().take(player);
            if (!last)
                return failure;
            last->stop();
            // Clips that are being closed may take their time on the disk.
            std::thread([last = std::move(last)]() mutable {
                pthread_setname_np(pthread_self(), "cammgr-delete");
                RtspPlayer::release(std::move(last));
            }).detach();
            return 0;
        });
}

int RtspPlayer_DeleteSync(RtspPlayer *player)
{
    // A callback that deletes its own player would destroy the session that is calling.
    if (ioThread().isCurrent())
        return failure;
    return guarded(failure, [&] {
        const PlayerPtr last = players().take(player);
        if (!last)
            return failure;
        last->stop();
        last->close(false);
        return 0;
    });
}

int RtspPlayer_HasVideoStream(RtspPlayer *player)
{
    return ask(player, &LiveStream::hasVideo);
}

int RtspPlayer_HasAudioStream(RtspPlayer *player)
{
    return ask(player, &LiveStream::hasAudio);
}

int RtspPlayer_SetVolume(RtspPlayer *player, int volume)
{
    return with(
        player, failure,
        [&](RtspPlayer &p) {
            p.withStream([&](LiveStream &stream) { stream.setVolume(std::clamp(volume, 0, 200)); });
            return 0;
        });
}

int RtspPlayer_Snapshot(RtspPlayer *player, const char *path)
{
    return with(
        player, failure,
        [&](RtspPlayer &p) {
            const std::string file = utf8OrEmpty(path);
            if (file.empty())
                return failure;
            return p.withStream([&](LiveStream &stream) { return stream.snapshot(file); });
        });
}

int RtspPlayer_BeginWriting(RtspPlayer *player, const char *basePath, int limit)
{
    return with(
        player, failure,
        [&](RtspPlayer &p) {
            const std::string base = utf8OrEmpty(basePath);
            if (base.empty() || limit < 0)
                return failure;
            return p.withStream(
                [&](LiveStream &stream) { return stream.beginWriting(base, limit); });
        });
}

int RtspPlayer_EndWriting(RtspPlayer *player)
{
    return with(
        player, failure,
        [](RtspPlayer &p) {
            return p.withStream([](LiveStream &stream) { return stream.endWriting(); });
        });
}

int RtspPlayer_IsWriting(RtspPlayer *player)
{
    return with(
        player, 0,
        [](RtspPlayer &p) {
            return p.withStream([](const LiveStream &stream) {
                if (stream.isWriting())
                    return CAMMGR_WRITING;
                return stream.isWaitingToWrite() ? CAMMGR_WRITING_WAITS : CAMMGR_WRITING_NONE;
            });
        });
}

int RtspPlayer_GetVideoFrameRate(RtspPlayer *player)
{
    return ask(player, &LiveStream::frameRate);
}

int RtspPlayer_GetBitRate(RtspPlayer *player)
{
    return ask(player, &LiveStream::bitRate);
}

int RtspPlayer_GetVideoWidth(RtspPlayer *player)
{
    return ask(player, &LiveStream::width);
}

int RtspPlayer_GetVideoHeight(RtspPlayer *player)
{
    return ask(player, &LiveStream::height);
}

int RtspPlayer_GetReason(RtspPlayer *player, char *detail, int size)
{
    return with(
        player, CAMMGR_REASON_NONE,
        [&](RtspPlayer &p) {
            const cammgr::Reason reason = p.reason();
            cammgr::copyCut(reason.detail, detail, size);
            return reason.value;
        });
}

int RtspPlayer_FetchStill(RtspPlayer *player, const char *path)
{
    return with(
        player, failure,
        [&](RtspPlayer &p) {
            const std::string file = utf8OrEmpty(path);
            return file.empty() ? failure : p.fetchStill(file);
        });
}

int cammgr_set_known_keys_file(const char *path)
{
    return guarded(
        failure,
        [&] {
            const std::string file = utf8OrEmpty(path);
            return !file.empty() && base::KnownKeys::instance().setFile(file) ? 0 : failure;
        });
}

int RtspPlayer_TrustKey(RtspPlayer *player)
{
    return with(
        player, failure,
        [](RtspPlayer &p) {
            p.trustKey();
            return 0;
        });
}

int RtspPlayer_GetFigures(RtspPlayer *player, RtspPlayerFigures *figures)
{
    return with(
        player, failure,
        [&](RtspPlayer &p) {
            const auto found = p.withStream([](const LiveStream &s) { return s.figures(); });
            return figures && found && found->write(*figures) ? 0 : failure;
        });
}

int RtspPlayer_Issue_P2PConf_URLCMDs(RtspPlayer *player, const char *const *requests, int count)
{
    return with(
        player, failure,
        [&](RtspPlayer &p) {
            if (!requests || count < 1 || count > maxCommands)
                return failure;
            std::vector<std::string> texts;
            for (int i = 0; i < count; ++i) {
                if (!requests[i])
                    return failure;
                texts.emplace_back(requests[i]);
            }
            return p.issueCommands(std::move(texts));
        });
}

int AudioUpload_Play(RtspPlayer *player)
{
    return with(
        player, failure, [](RtspPlayer &p) { return p.talk(); });
}

int AudioUpload_Stop(RtspPlayer *player)
{
    return with(
        player, failure,
        [](RtspPlayer &p) {
            p.stopTalk();
            return 0;
        });
}

int AudioUpload_IsPlaying(RtspPlayer *player)
{
    return with(
        player, 0, [](RtspPlayer &p) { return p.isTalking() ? 1 : 0; });
}
