#include "tests/fakes/fake_cammgr_p.h"
#include "tests/fakes/small_jpeg.h"

#include <algorithm>
#include <fstream>

using fake_cammgr::Call;
using fake_cammgr::library;
using fake_cammgr::post;
using fake_cammgr::Probe;
using fake_cammgr::Script;

namespace {

/// One call of the program: noted, checked against the contract, and locked.
class Entry
{
public:
    Entry(const char *name, RtspPlayer *handle, std::vector<std::string> texts = {},
          std::vector<std::intptr_t> numbers = {})
        : m_name(name)
        , m_lock(library().mutex)
    {
        const auto same = [&](const auto &known) { return known.get() == handle; };
        const auto found = std::find_if(library().players.begin(), library().players.end(), same);
        Call call{name, std::move(texts), std::move(numbers), handle};
        library().calls.push_back(call);
        if (library().thread.isCurrent())
            reportViolation("called from the callback");
        if (found == library().players.end()) {
            if (handle)
                reportViolation("unknown player");
            return;
        }
        (*found)->m_calls.push_back(std::move(call));
        if ((*found)->m_deleted)
            reportViolation("deleted player");
        else
            m_player = *found;
    }

    explicit operator bool() const { return m_player != nullptr; }
    RtspPlayer *operator->() const { return m_player.get(); }
    Script &script() const { return m_player->m_script; }
    const std::shared_ptr<RtspPlayer> &player() const { return m_player; }
    void unlock() { m_lock.unlock(); }
    void reportViolation(const char *what)
    {
        library().violations.push_back(std::string(m_name) + ": " + what);
    }

    /// The result that the script gives to this call, otherwise `usual`; for a player that is not
    /// there `none`.
    int result(int usual, int none) const
    {
        if (!m_player)
            return none;
        const auto found = m_player->m_script.results.find(m_name);
        return found == m_player->m_script.results.end() ? usual : found->second;
    }
    /// Whether the call is to have its effect.
    bool works() const { return result(0, -1) >= 0; }

private:
    const char *m_name;
    std::unique_lock<std::mutex> m_lock;
    std::shared_ptr<RtspPlayer> m_player;
};

/// A figure of the script.
int figure(const char *name, RtspPlayer *player, int Script::*field)
{
    const Entry entry(name, player);
    return entry ? entry.result(entry.script().*field, 0) : 0;
}

bool writeFile(const std::string &path, const std::string &bytes)
{
    std::ofstream file(path, std::ios::binary);
    file << bytes;
    file.close();
    return file.good();
}

std::string snapshotBytes(const Script &script)
{
    return script.snapshotImage.empty()
               ? std::string(reinterpret_cast<const char *>(smallJpeg), sizeof smallJpeg)
               : script.snapshotImage;
}

} // namespace

int cammgr_takes_utf8(void)
{
    const std::lock_guard lock(library().mutex);
    return library().takesUtf8;
}

RtspPlayer *RtspPlayer_Create(const char *hostname, const char *username, const char *password,
                              RtspPlayerCallback callback, void *context)
{
    Entry entry("RtspPlayer_Create", nullptr, {hostname, username, password});
    if (library().failures > 0) {
        --library().failures;
        return nullptr;
    }
    auto player = std::make_shared<RtspPlayer>(hostname, username, password, callback, context,
                                               library().defaults);
    player->m_calls.push_back(library().calls.back());
    library().players.push_back(player);
    return player.get();
}

int RtspPlayer_TickAlive(RtspPlayer *player)
{
    Entry entry("RtspPlayer_TickAlive", player);
    if (!entry || !entry.works() || entry->m_probing)
        return entry.result(0, -1);
    const Probe probe = entry.script().probe;
    entry->m_probing = probe == Probe::ByHand;
    if (probe == Probe::Ok) {
        post(entry.player(), CAMMGR_MSG_PROBE_OK, 0);
    } else if (probe != Probe::ByHand) {
        post(entry.player(), CAMMGR_MSG_PROBE_FAILED,
             probe == Probe::Refused ? CAMMGR_ERROR_REFUSED : CAMMGR_ERROR_UNREACHABLE);
    }
    return entry.result(0, -1);
}

int RtspPlayer_Stop_Connecting(RtspPlayer *player)
{
    Entry entry("RtspPlayer_Stop_Connecting", player);
    if (entry && entry->m_probing && entry.script().stopEndsProbe) {
        entry->m_probing = false;
        post(entry.player(), CAMMGR_MSG_PROBE_FAILED, CAMMGR_ERROR_UNREACHABLE);
    }
    return entry.result(0, -1);
}

int RtspPlayer_GetMode(RtspPlayer *player)
{
    return figure("RtspPlayer_GetMode", player, &Script::mode);
}

int RtspPlayer_SetupP2PliveStream(RtspPlayer *player, const char *path, uintptr_t nativeWindow)
{
    Entry entry("RtspPlayer_SetupP2PliveStream", player, {path}, {std::intptr_t(nativeWindow)});
    if (entry && entry.works()) {
        entry->m_path = path;
        entry->m_window = nativeWindow;
    }
    return entry.result(0, -1);
}

int RtspPlayer_Play(RtspPlayer *player)
{
    Entry entry("RtspPlayer_Play", player);
    if (entry && entry.works() && entry.script().playPlays)
        entry.script().playing = 1;
    return entry.result(0, -1);
}

int RtspPlayer_Stop(RtspPlayer *player)
{
    Entry entry("RtspPlayer_Stop", player);
    if (entry && entry.works() && entry.script().stopStops) {
        entry.script().playing = 0;
        entry.script().writing = 0;
        entry.script().uploading = 0;
    }
    return entry.result(0, -1);
}

int RtspPlayer_IsPlaying(RtspPlayer *player)
{
    return figure("RtspPlayer_IsPlaying", player, &Script::playing);
}

int RtspPlayer_Delete(RtspPlayer *player)
{
    Entry entry("RtspPlayer_Delete", player);
    if (entry && entry.script().playing)
        entry.reportViolation("the player plays");
    if (entry && entry.works() && entry.script().deleteAnswers)
        post(entry.player(), CAMMGR_MSG_DELETED, 0);
    return entry.result(0, -1);
}

int RtspPlayer_DeleteSync(RtspPlayer *player)
{
    Entry entry("RtspPlayer_DeleteSync", player);
    const int result = entry.result(0, -1);
    if (entry) {
        if (entry.script().playing)
            entry.reportViolation("the player plays");
        entry->m_deleted = true;
        entry.unlock();
        library().thread.drop(player);
    }
    return result;
}

int RtspPlayer_HasVideoStream(RtspPlayer *player)
{
    return figure("RtspPlayer_HasVideoStream", player, &Script::hasVideo);
}

int RtspPlayer_HasAudioStream(RtspPlayer *player)
{
    return figure("RtspPlayer_HasAudioStream", player, &Script::hasAudio);
}

int RtspPlayer_SetVolume(RtspPlayer *player, int volume)
{
    return Entry("RtspPlayer_SetVolume", player, {}, {volume}).result(0, -1);
}

int RtspPlayer_Snapshot(RtspPlayer *player, const char *path)
{
    Entry entry("RtspPlayer_Snapshot", player, {path});
    if (entry && entry.works() && entry.script().snapshotWrites &&
        !writeFile(path, snapshotBytes(entry.script())))
        return -1;
    return entry.result(0, -1);
}

int RtspPlayer_BeginWriting(RtspPlayer *player, const char *basePath, int limit)
{
    Entry entry("RtspPlayer_BeginWriting", player, {basePath}, {limit});
    if (entry && entry.works()) {
        entry.script().writing = 1;
        entry->m_recordBase = basePath;
    }
    return entry.result(0, -1);
}

int RtspPlayer_EndWriting(RtspPlayer *player)
{
    Entry entry("RtspPlayer_EndWriting", player);
    if (entry && entry.works()) {
        if (entry.script().writing && entry.script().writingWrites) {
            writeFile(entry->m_recordBase + ".mp4", "recording");
            writeFile(entry->m_recordBase + ".mp4.jpeg", snapshotBytes(entry.script()));
        }
        entry.script().writing = 0;
    }
    return entry.result(0, -1);
}

int RtspPlayer_IsWriting(RtspPlayer *player)
{
    return figure("RtspPlayer_IsWriting", player, &Script::writing);
}

int RtspPlayer_GetVideoFrameRate(RtspPlayer *player)
{
    return figure("RtspPlayer_GetVideoFrameRate", player, &Script::frameRate);
}

int RtspPlayer_GetBitRate(RtspPlayer *player)
{
    return figure("RtspPlayer_GetBitRate", player, &Script::bitRate);
}

int RtspPlayer_GetVideoWidth(RtspPlayer *player)
{
    return figure("RtspPlayer_GetVideoWidth", player, &Script::width);
}

int RtspPlayer_GetVideoHeight(RtspPlayer *player)
{
    return figure("RtspPlayer_GetVideoHeight", player, &Script::height);
}

int RtspPlayer_GetReason(RtspPlayer *player, char *detail, int size)
{
    const Entry entry("RtspPlayer_GetReason", player, {}, {size});
    if (!entry)
        return CAMMGR_REASON_NONE;
    if (detail && size > 0)
        detail[entry.script().reasonDetail.copy(detail, size - 1)] = '\0';
    return entry.result(entry.script().reason, CAMMGR_REASON_NONE);
}

int RtspPlayer_FetchStill(RtspPlayer *player, const char *path)
{
    Entry entry("RtspPlayer_FetchStill", player, {path});
    if (entry && entry.works() && entry.script().still) {
        const int answer = *entry.script().still;
        if (answer == 0)
            writeFile(path, snapshotBytes(entry.script()));
        post(entry.player(), CAMMGR_MSG_STILL, answer);
    }
    return entry.result(0, -1);
}

int cammgr_set_known_keys_file(const char *path)
{
    return Entry("cammgr_set_known_keys_file", nullptr, {path}).result(0, 0);
}

int RtspPlayer_TrustKey(RtspPlayer *player)
{
    return Entry("RtspPlayer_TrustKey", player).result(0, -1);
}

int RtspPlayer_GetFigures(RtspPlayer *player, RtspPlayerFigures *figures)
{
    const Entry entry("RtspPlayer_GetFigures", player, {}, {figures->size});
    if (!entry || !entry.script().figures)
        return -1;
    const int32_t size = figures->size;
    *figures = *entry.script().figures;
    figures->size = size;
    return entry.result(0, -1);
}

int RtspPlayer_Issue_P2PConf_URLCMDs(RtspPlayer *player, const char *const *requests, int count)
{
    const std::vector<std::string> texts(requests, requests + count);
    Entry entry("RtspPlayer_Issue_P2PConf_URLCMDs", player, texts, {count});
    if (entry && entry.works()) {
        entry->m_requests = texts;
        if (entry.script().replies) {
            const std::vector<std::string> replies = entry.script().replies(texts);
            post(entry.player(), CAMMGR_MSG_COMMAND_REPLIES, int(replies.size()), replies);
        }
    }
    return entry.result(0, -1);
}

int AudioUpload_Play(RtspPlayer *player)
{
    Entry entry("AudioUpload_Play", player);
    if (entry && entry.works())
        entry.script().uploading = 1;
    return entry.result(0, -1);
}

int AudioUpload_Stop(RtspPlayer *player)
{
    Entry entry("AudioUpload_Stop", player);
    if (entry && entry.works())
        entry.script().uploading = 0;
    return entry.result(0, -1);
}

int AudioUpload_IsPlaying(RtspPlayer *player)
{
    return figure("AudioUpload_IsPlaying", player, &Script::uploading);
}
