#pragma once

#include "camsim/camera_model.h"
#include "camsim/options.h"

#include <glib.h>
#include <netinet/in.h>
#include <pugixml.hpp>

#include <cstdint>
#include <deque>
#include <string>

namespace camsim {

/// Answers WS-Discovery (OASIS WS-Discovery 1.0, ONVIF Core 7.3) for one camera: Probe and Resolve,
/// and says Hello and Bye. Runs on the default main context.
class DiscoveryResponder
{
public:
    /// neighbour: where answers list a second device, one that does not exist.
    DiscoveryResponder(CameraModel &camera, Neighbour neighbour);
    ~DiscoveryResponder();
    DiscoveryResponder(const DiscoveryResponder &) = delete;
    DiscoveryResponder &operator=(const DiscoveryResponder &) = delete;

    /// Answers what is sent to this address alone. It stays there when the camera moves, as the
    /// multicast group of a network would.
    bool open(const std::string &address, int port);
    /// Also joins the multicast group, on the interface of that name or on the system's choice.
    bool joinGroup(const std::string &interface);
    int port() const { return m_unicast.port; }

    /// A camera that is down does not answer.
    void setEnabled(bool enabled) { m_enabled = enabled; }
    /// Announces the camera's present address: to the group, and to recent clients.
    void sayHello() { announce("Hello"); }
    void sayBye() { announce("Bye"); }

private:
    struct Socket
    {
        int handle = -1;
        int port = 0;
        guint source = 0;
    };

    void watch(Socket &socket, int handle);
    static gboolean onReadable(gint handle, GIOCondition condition, gpointer self);
    void receive(int handle);
    std::string answerTo(const std::string &text) const;
    void announce(const char *action);
    void remember(const sockaddr_in &asker);

    void describeMatches(pugi::xml_node matches, const char *name) const;

    CameraModel &m_camera;
    const Neighbour m_neighbour;
    Socket m_unicast;
    Socket m_group;
    std::deque<sockaddr_in> m_askers;
    bool m_enabled = true;
};

} // namespace camsim
