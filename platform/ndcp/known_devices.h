#pragma once

#include <map>
#include <mutex>
#include <string>

namespace ndcp {

/// Where the devices of this process's searches can be queried for their configuration. Shared by
/// all clients: the one that searched need not be the one that configures. Safe from any thread.
class KnownDevices
{
public:
    static KnownDevices &instance();

    /// Address of the device service; empty when the UID is not known.
    [[nodiscard]] std::string service(const std::string &uid) const;
    void setService(const std::string &uid, const std::string &service);

private:
    mutable std::mutex m_mutex;                    ///< protects m_services
    std::map<std::string, std::string> m_services; ///< by UID in lower case
};

} // namespace ndcp
