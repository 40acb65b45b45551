#pragma once

#include "camsim/camera.h"

#include <glib.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace camsim {

using Cameras = std::vector<std::unique_ptr<Camera>>;

/// Carries out one line of the control connection: "CAMERA-INDEX COMMAND [ARGUMENTS]", where the
/// index may be "all". The answer starts with "OK" or "ERR" and is one line.
std::string runControlLine(const Cameras &cameras, const std::string &line);

/// The control connection: lines of text over TCP on loopback. Runs on the default main context.
class ControlServer
{
public:
    explicit ControlServer(const Cameras &cameras) : m_cameras(cameras) {}
    ~ControlServer();
    ControlServer(const ControlServer &) = delete;
    ControlServer &operator=(const ControlServer &) = delete;

    bool open(int port);
    int port() const { return m_port; }

private:
    struct Client
    {
        guint source = 0;
        std::string pending;
    };

    static gboolean onConnect(gint handle, GIOCondition condition, gpointer self);
    static gboolean onReadable(gint handle, GIOCondition condition, gpointer self);
    bool read(int handle);

    const Cameras &m_cameras;
    int m_listener = -1;
    int m_port = 0;
    guint m_source = 0;
    std::map<int, Client> m_clients;
};

} // namespace camsim
