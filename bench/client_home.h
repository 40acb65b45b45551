#pragma once

#include "camsim/camsim_process.h"

#include <string>
#include <vector>

namespace bench {

/// Settings and album of the client under measurement, in a separate folder that is removed with
/// this object. Sets the environment so that the client finds them.
class ClientHome
{
public:
    ClientHome();
    ~ClientHome();
    ClientHome(const ClientHome &) = delete;
    ClientHome &operator=(const ClientHome &) = delete;

    /// Writes the settings: these cameras, all of them in the grid.
    void registerCameras(const std::vector<zelvaro::test::SimulatedCamera> &cameras);
    /// Holds a folder for each camera, by its UID.
    std::string albumFolder() const { return m_folder + "/Album"; }

private:
    std::string m_folder;
};

} // namespace bench
