#include "ui/discovery/ndcp_client.h"

#include <utility>

namespace zelvaro {

NdcpClient::NdcpClient(std::function<void(int, int)> onEvent)
    : m_onEvent(std::move(onEvent))
    , m_client(ndcpclient_create(&NdcpClient::callback, this))
{
}

void NdcpClient::callback(int message, int error, void *user)
{
    static_cast<NdcpClient *>(user)->m_onEvent(message, error);
}

bool NdcpClient::discover()
{
    return m_client && ndcpclient_discover(m_client.get()) >= 0;
}

bool NdcpClient::getConf(ndcp_device *device)
{
    return m_client && ndcpclient_get_conf(m_client.get(), device) >= 0;
}

bool NdcpClient::setConf(ndcp_device *device)
{
    return m_client && ndcpclient_set_conf(m_client.get(), device) >= 0;
}

void NdcpClient::forEachDevice(const std::function<void(const ndcp_device &)> &visit) const
{
    const int32_t count = m_client ? ndcpclient_getcnt(m_client.get()) : 0;
    for (int32_t index = 0; index < count; ++index) {
        const ndcp_device *device = ndcpclient_getdev(m_client.get(), index);
        if (device == nullptr)
            return;
        visit(*device);
    }
}

} // namespace zelvaro
