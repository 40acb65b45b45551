#include "platform/cammgr/io_services.h"

#include "platform/cammgr/io_thread.h"

#include <gio/gio.h>

namespace cammgr {

IoServices &IoServices::instance()
{
    static IoServices *const services = new IoServices;
    return *services;
}

IoServices::IoServices() : m_lookup(ioThread().context())
{
    // The monitor is one for the process and speaks on the thread that happened to make it.
    const auto changed = +[](GNetworkMonitor *, gboolean available, gpointer self) {
        if (available)
            ioThread().post([self] { static_cast<IoServices *>(self)->networkChanged(); });
    };
    g_signal_connect(g_network_monitor_get_default(), "network-changed", G_CALLBACK(changed), this);
}

int IoServices::watchNetwork(std::function<void()> changed)
{
    m_watchers.emplace(m_nextId, std::move(changed));
    return m_nextId++;
}

void IoServices::unwatchNetwork(int id)
{
    m_watchers.erase(id);
}

void IoServices::networkChanged()
{
    for (const auto &[id, changed] : m_watchers)
        changed();
}

} // namespace cammgr
