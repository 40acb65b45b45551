#pragma once

#include "platform/onvif/camera_lookup.h"

#include <functional>
#include <map>

namespace cammgr {

/// What all sessions share on the I/O thread: the ONVIF look-ups and the watch on the network.
/// Made at first use, on the I/O thread; lives as long as the process.
class IoServices
{
public:
    static IoServices &instance();

    onvif::CameraLookup &lookup() { return m_lookup; }

    /// Calls changed on the I/O thread each time the network comes (back) up or changes.
    /// @return an id for unwatchNetwork()
    int watchNetwork(std::function<void()> changed);
    void unwatchNetwork(int id);

private:
    IoServices();
    void networkChanged();

    onvif::CameraLookup m_lookup;
    std::map<int, std::function<void()>> m_watchers;
    int m_nextId = 1;
};

} // namespace cammgr
