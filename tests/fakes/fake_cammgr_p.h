#pragma once

#include "tests/fakes/fake_cammgr.h"
#include "tests/fakes/fake_thread.h"

#include <mutex>

/// All fields but the constant ones belong to the library's mutex.
struct RtspPlayer final : fake_cammgr::Player, std::enable_shared_from_this<RtspPlayer>
{
    RtspPlayer(std::string hostname, std::string username, std::string password,
               RtspPlayerCallback callback, void *context, fake_cammgr::Script script)
        : m_hostname(std::move(hostname))
        , m_username(std::move(username))
        , m_password(std::move(password))
        , m_callback(callback)
        , m_context(context)
        , m_script(std::move(script))
    {
    }

    const std::string &hostname() const override { return m_hostname; }
    const std::string &username() const override { return m_username; }
    const std::string &password() const override { return m_password; }
    void *context() const override { return m_context; }
    RtspPlayer *handle() const override { return const_cast<RtspPlayer *>(this); }
    bool deleted() const override;
    bool probeOutstanding() const override;
    std::string path() const override;
    std::uintptr_t window() const override;
    std::vector<std::string> requests() const override;
    fake_cammgr::Script script() const override;
    void change(const std::function<void(fake_cammgr::Script &)> &edit) override;
    std::vector<fake_cammgr::Call> calls() const override;
    int count(const std::string &name) const override;
    std::optional<fake_cammgr::Call> last(const std::string &name) const override;
    void forgetCalls() override;
    void probeOk() override { send(CAMMGR_MSG_PROBE_OK, 0); }
    void probeFailed(int error) override { send(CAMMGR_MSG_PROBE_FAILED, error); }
    void reply(const std::vector<std::string> &replies) override
    {
        send(CAMMGR_MSG_COMMAND_REPLIES, int(replies.size()), replies);
    }
    void send(int message, int countOrError,
              const std::optional<std::vector<std::string>> &strings = {}) override;

    const std::string m_hostname;
    const std::string m_username;
    const std::string m_password;
    const RtspPlayerCallback m_callback;
    void *const m_context;
    fake_cammgr::Script m_script;
    bool m_deleted = false;
    bool m_probing = false;
    std::string m_path;
    std::uintptr_t m_window = 0;
    std::vector<std::string> m_requests;
    std::string m_recordBase;
    std::vector<fake_cammgr::Call> m_calls;
};

namespace fake_cammgr {

struct Library
{
    std::mutex mutex; ///< protects all below and the players' fields
    std::vector<std::shared_ptr<RtspPlayer>> players;
    Script defaults;
    int takesUtf8 = 1;
    int failures = 0;
    std::vector<Call> calls;
    std::vector<std::string> violations;
    fake::DeliveryThread thread{"fake_cammgr"};
};

/// Never destroyed: the program may let go of players while the process ends.
Library &library();

/// Has the library's thread call the program.
void post(const std::shared_ptr<RtspPlayer> &player, int message, int countOrError,
          const std::optional<std::vector<std::string>> &strings = {});

} // namespace fake_cammgr
