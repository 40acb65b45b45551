#pragma once

#include "platform/ndcp/ndcp.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace ndcp {

/// What is remembered of the devices of this process's searches. Shared by all clients: the one
/// that searched need not be the one that configures. Safe from any thread.
class KnownDevices
{
public:
    struct Device
    {
        std::string service; ///< address of the device service; empty when it is not known
        int webPort = 0;     ///< of its web pages, from its configuration; 0 when it was never read
        /// As the last reading or writing left it, without user name and password.
        std::optional<ndcp_device> record;
    };

    static KnownDevices &instance();

    [[nodiscard]] Device device(const std::string &uid) const;
    /// An empty service is forgotten: the device is looked for the next time.
    void setService(const std::string &uid, const std::string &service);
    void setWebPort(const std::string &uid, int port);
    void setRecord(const std::string &uid, const std::optional<ndcp_device> &record);

private:
    Device &place(const std::string &uid);

    mutable std::mutex m_mutex;              ///< protects m_devices
    std::map<std::string, Device> m_devices; ///< by UID in lower case
};

} // namespace ndcp
