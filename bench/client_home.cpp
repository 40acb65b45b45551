#include "bench/client_home.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace bench {

ClientHome::ClientHome()
{
    std::string folder = std::filesystem::temp_directory_path() / "zelvaro-bench-XXXXXX";
    if (mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("no temporary folder");
    m_folder = folder;
    std::filesystem::create_directories(m_folder + "/data/Zelvaro");
    setenv("XDG_DATA_HOME", (m_folder + "/data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (m_folder + "/config").c_str(), 1);
    setenv("ZELVARO_DISCOVERY_MULTICAST", "0", 1);
}

ClientHome::~ClientHome()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

void ClientHome::registerCameras(const std::vector<zelvaro::test::SimulatedCamera> &cameras)
{
    std::ofstream file(m_folder + "/data/Zelvaro/Zelvaro.cfg");
    file << "ALBUMPATH=" << albumFolder() << "\n";
    std::string targets;
    for (std::size_t i = 0; i < cameras.size(); ++i) {
        const auto &camera = cameras[i];
        file << "[" << i
             << "]\nTYPE=P2P\nHOSTNAME=" << (camera.uid.empty() ? camera.host() : camera.uid)
             << "\nUSERNAME=" << camera.user << "\nPASSWORD=" << camera.password << "\nNAME=\""
             << camera.name << "\"\nMULTILIVE=1\n";
        if (!camera.discovery.empty())
            targets += (targets.empty() ? "" : ",") + camera.discovery;
    }
    setenv("ZELVARO_DISCOVERY_TARGETS", targets.c_str(), 1);
}

} // namespace bench
