#pragma once

#include "platform/ndcp/ndcp.h"

#include <functional>
#include <memory>

namespace zelvaro {

/// The only class that includes the discovery library: a client handle, alive as long as its owner.
/// Used on the GUI thread.
class NdcpClient
{
public:
    /// onEvent (event code, error code) runs on a thread of the library; it may only emit a
    /// signal that is connected queued. It does not run any more once the client is destroyed.
    explicit NdcpClient(std::function<void(int, int)> onEvent);
    // The library keeps the address.
    NdcpClient(const NdcpClient &) = delete;
    NdcpClient &operator=(const NdcpClient &) = delete;

    /// Each is false when the library refused the request; then no event follows.
    bool discover();
    bool getConf(ndcp_device *device);
    bool setConf(ndcp_device *device);

    /// Calls visit for each device that the last search found.
    void forEachDevice(const std::function<void(const ndcp_device &)> &visit) const;

private:
    struct Delete
    {
        void operator()(ndcp_client *client) const { ndcpclient_delete(client); }
    };

    static void callback(int message, int error, void *user);

    std::function<void(int, int)> m_onEvent;
    std::unique_ptr<ndcp_client, Delete> m_client; // destroyed before m_onEvent
};

} // namespace zelvaro
