#pragma once

#include "camsim/camsim_process.h"

#include <string>
#include <vector>

namespace zelvaro::test {

/// Settings and album of the client, in a separate folder that is removed with this object. Sets
/// the environment so that the client finds them and stays on this machine; has to be made before
/// the client is started.
class ClientHome
{
public:
    /// Throws std::runtime_error when there is no room for the folder.
    ClientHome();
    ~ClientHome();
    ClientHome(const ClientHome &) = delete;
    ClientHome &operator=(const ClientHome &) = delete;

    /// Writes the settings with these cameras, and makes them findable.
    /// multiLive: the grid of live pictures shows them
    void registerCameras(const std::vector<SimulatedCamera> &cameras, bool multiLive = true) const;
    /// Lets the client find these cameras on the network; none is registered.
    static void makeFindable(const std::vector<SimulatedCamera> &cameras);

    std::string settingsFile() const { return m_folder + "/data/Zelvaro/Zelvaro.cfg"; }
    /// Holds a folder for each camera, by its UID.
    std::string albumFolder() const { return m_folder + "/Album"; }

private:
    std::string m_folder;
};

} // namespace zelvaro::test
