#pragma once

#include "camsim/camsim_process.h"
#include "platform/cammgr/cammgr.h"
#include "tests/platform/cammgr/player_messages.h"
#include "tests/platform/cammgr/wait_until.h"

#include <glib.h>

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

using zelvaro::test::CamsimProcess;
using zelvaro::test::SimulatedCamera;
using namespace std::chrono_literals;

inline const char *const mainPath = "/live/0/h264.sdp";
inline const char *const subPath = "/live/1/h264.sdp";

/// Cameras that discovery finds, and nothing else on the network.
class Cameras : public CamsimProcess
{
public:
    explicit Cameras(const std::vector<std::string> &arguments = {}) : CamsimProcess(arguments)
    {
        std::string targets;
        for (const SimulatedCamera &camera : cameras())
            targets += camera.discovery + " ";
        g_setenv("ZELVARO_DISCOVERY_TARGETS", targets.c_str(), TRUE);
        g_setenv("ZELVARO_DISCOVERY_MULTICAST", "0", TRUE);
    }
};

/// A player as used by a client: probes again and again.
class Player
{
public:
    explicit Player(const std::string &host, const std::string &password = "camsim")
        : m_player(RtspPlayer_Create(host.c_str(), "admin", password.c_str(),
                                     &PlayerMessages::callback, &m_messages))
    {
    }
    ~Player()
    {
        RtspPlayer_Stop(m_player);
        RtspPlayer_DeleteSync(m_player);
    }
    operator RtspPlayer *() const { return m_player; }
    PlayerMessages &messages() { return m_messages; }

    std::optional<PlayerMessages::Message> probe()
    {
        RtspPlayer_TickAlive(m_player);
        return m_messages.next();
    }
    /// Probes until one has that result.
    bool probeUntil(int kind, int value, std::chrono::seconds limit = 60s)
    {
        return waitUntil(
            [&] {
                const auto message = probe();
                return message && message->kind == kind && message->value == value;
            },
            limit);
    }
    /// Why the camera is not shown: value and detail.
    std::pair<int, std::string> reason() const
    {
        std::array<char, 256> detail = {};
        const int value = RtspPlayer_GetReason(m_player, detail.data(), detail.size());
        return {value, detail.data()};
    }
    bool waitForReason(int value, std::chrono::seconds limit = 30s)
    {
        return waitUntil([&] { return reason().first == value; }, limit);
    }
    /// Has the stream started once, whatever comes of it.
    void order(const char *path, uintptr_t window = 0)
    {
        RtspPlayer_SetupP2PliveStream(m_player, path, window);
        RtspPlayer_Play(m_player);
    }
    bool playUntilPictures(std::chrono::seconds limit = 30s)
    {
        return waitUntil(
            [&] {
                RtspPlayer_Play(m_player);
                return RtspPlayer_IsPlaying(m_player) != 0;
            },
            limit);
    }

private:
    PlayerMessages m_messages;
    RtspPlayer *m_player;
};
