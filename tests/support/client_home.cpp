#include "tests/support/client_home.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace zelvaro::test {

ClientHome::ClientHome()
{
    std::string folder = std::filesystem::temp_directory_path() / "zelvaro-home-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    m_folder = folder;
    std::filesystem::create_directories(m_folder + "/data/Zelvaro");
    setenv("XDG_DATA_HOME", (m_folder + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (m_folder + "/config").c_str(), 1);
    setenv("ZELVARO_DISCOVERY_MULTICAST", "0", 1);
    registerCameras({});
}

ClientHome::~ClientHome()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void ClientHome::registerCameras(const std::vector<SimulatedCamera> &cameras, bool multiLive) const
{
    makeFindable(cameras);
    std::ofstream file(settingsFile());
    file << "ALBUMPATH=" << albumFolder() << "\n";
    for (std::size_t i = 0; i < cameras.size(); ++i) {
        const SimulatedCamera &camera = cameras[i];
        file << "[" << i
             << "]\nTYPE=P2P\nHOSTNAME=" << (camera.uid.empty() ? camera.host() : camera.uid)
             << "\nUSERNAME=" << camera.user << "\nPASSWORD=" << camera.password << "\nNAME=\""
             << camera.name << "\"\nMULTILIVE=" << (multiLive ? 1 : 0) << "\n";
    }
}

void ClientHome::makeFindable(const std::vector<SimulatedCamera> &cameras)
{
    std::string targets;
    for (const SimulatedCamera &camera : cameras)
        if (!camera.discovery.empty())
            targets += (targets.empty() ? "" : ",") + camera.discovery;
    setenv("ZELVARO_DISCOVERY_TARGETS", targets.c_str(), 1);
}

} // namespace zelvaro::test
