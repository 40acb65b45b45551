#include "bench/engine_session.h"

namespace bench {

EngineSession::EngineSession(const std::string &host, const std::string &user,
                             const std::string &password)
    : m_player(RtspPlayer_Create(host.c_str(), user.c_str(), password.c_str(),
                                 &EngineSession::onMessage, this))
{
}

void EngineSession::onMessage(int message, int, void *self, char **)
{
    auto *session = static_cast<EngineSession *>(self);
    if (message == CAMMGR_MSG_PROBE_OK)
        session->m_probe = Probe::Answered;
    else if (message == CAMMGR_MSG_PROBE_FAILED)
        session->m_probe = Probe::Failed;
}

void EngineSession::probe()
{
    m_probe = Probe::Waiting;
    RtspPlayer_TickAlive(m_player.get());
}

void EngineSession::setUp(const std::string &path, unsigned long window)
{
    RtspPlayer_SetupP2PliveStream(m_player.get(), path.c_str(), window);
    RtspPlayer_SetVolume(m_player.get(), 0);
}

void EngineSession::play()
{
    RtspPlayer_Play(m_player.get());
}

void EngineSession::stop()
{
    RtspPlayer_Stop_Connecting(m_player.get());
    RtspPlayer_Stop(m_player.get());
}

} // namespace bench
