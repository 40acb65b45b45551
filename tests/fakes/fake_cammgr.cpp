#include "tests/fakes/fake_cammgr_p.h"

#include <algorithm>

using fake_cammgr::Call;
using fake_cammgr::library;
using fake_cammgr::Script;

bool RtspPlayer::deleted() const
{
    const std::lock_guard lock(library().mutex);
    return m_deleted;
}

bool RtspPlayer::probeOutstanding() const
{
    const std::lock_guard lock(library().mutex);
    return m_probing;
}

std::string RtspPlayer::path() const
{
    const std::lock_guard lock(library().mutex);
    return m_path;
}

std::uintptr_t RtspPlayer::window() const
{
    const std::lock_guard lock(library().mutex);
    return m_window;
}

std::vector<std::string> RtspPlayer::requests() const
{
    const std::lock_guard lock(library().mutex);
    return m_requests;
}

Script RtspPlayer::script() const
{
    const std::lock_guard lock(library().mutex);
    return m_script;
}

void RtspPlayer::change(const std::function<void(Script &)> &edit)
{
    const std::lock_guard lock(library().mutex);
    edit(m_script);
}

std::vector<Call> RtspPlayer::calls() const
{
    const std::lock_guard lock(library().mutex);
    return m_calls;
}

int RtspPlayer::count(const std::string &name) const
{
    const std::vector<Call> all = calls();
    return int(
        std::count_if(all.begin(), all.end(), [&](const Call &c) { return c.name == name; }));
}

std::optional<Call> RtspPlayer::last(const std::string &name) const
{
    const std::vector<Call> all = calls();
    const auto found =
        std::find_if(all.rbegin(), all.rend(), [&](const Call &c) { return c.name == name; });
    return found == all.rend() ? std::nullopt : std::optional<Call>(*found);
}

void RtspPlayer::forgetCalls()
{
    const std::lock_guard lock(library().mutex);
    m_calls.clear();
}

void RtspPlayer::send(int message, int countOrError,
                      const std::optional<std::vector<std::string>> &strings)
{
    {
        const std::lock_guard lock(library().mutex);
        if (message == CAMMGR_MSG_PROBE_OK || message == CAMMGR_MSG_PROBE_FAILED)
            m_probing = false;
    }
    fake_cammgr::post(shared_from_this(), message, countOrError, strings);
}

namespace fake_cammgr {
namespace {

void deliver(RtspPlayer &player, int message, int countOrError,
             std::optional<std::vector<std::string>> strings)
{
    {
        const std::lock_guard lock(library().mutex);
        if (message == CAMMGR_MSG_DELETED)
            player.m_deleted = true;
    }
    std::vector<char *> pointers;
    if (strings) {
        for (std::string &text : *strings)
            pointers.push_back(text.data());
        pointers.push_back(nullptr);
    }
    player.m_callback(message, countOrError, player.m_context, strings ? pointers.data() : nullptr);
}

} // namespace

Library &library()
{
    static Library &instance = *new Library;
    return instance;
}

void post(const std::shared_ptr<RtspPlayer> &player, int message, int countOrError,
          const std::optional<std::vector<std::string>> &strings)
{
    library().thread.post(
        player.get(), [=] { deliver(*player, message, countOrError, strings); });
}

void reset()
{
    library().thread.stop();
    const std::lock_guard lock(library().mutex);
    library().players.clear();
    library().defaults = {};
    library().takesUtf8 = 1;
    library().failures = 0;
    library().calls.clear();
    library().violations.clear();
}

void setDefaults(const Script &script)
{
    const std::lock_guard lock(library().mutex);
    library().defaults = script;
}

void setTakesUtf8(int answer)
{
    const std::lock_guard lock(library().mutex);
    library().takesUtf8 = answer;
}

void failCreate(int times)
{
    const std::lock_guard lock(library().mutex);
    library().failures = times;
}

std::vector<std::shared_ptr<Player>> players()
{
    const std::lock_guard lock(library().mutex);
    return {library().players.begin(), library().players.end()};
}

std::shared_ptr<Player> player(const std::string &hostname)
{
    const std::lock_guard lock(library().mutex);
    const auto &all = library().players;
    const auto found = std::find_if(all.rbegin(), all.rend(),
                                    [&](const auto &p) { return p->m_hostname == hostname; });
    return found == all.rend() ? nullptr : *found;
}

std::shared_ptr<Player> lastPlayer()
{
    const std::lock_guard lock(library().mutex);
    return library().players.empty() ? nullptr : library().players.back();
}

std::vector<Call> calls()
{
    const std::lock_guard lock(library().mutex);
    return library().calls;
}

std::vector<std::string> contractViolations()
{
    const std::lock_guard lock(library().mutex);
    return library().violations;
}

bool waitDelivered(int milliseconds)
{
    return library().thread.waitIdle(milliseconds);
}

} // namespace fake_cammgr
