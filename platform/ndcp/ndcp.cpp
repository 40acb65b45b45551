#include "platform/ndcp/ndcp.h"

#include "platform/ndcp/client.h"
#include "platform/ndcp/worker.h"

#include <exception>
#include <new>

struct ndcp_client
{
    ndcp::Client client;
};

namespace {

// Nothing is thrown across the C interface: out of memory is a failure like others.
template <class Function>
int guarded(Function function) noexcept
{
    try {
        function();
        return 0;
    } catch (const std::exception &) {
        return -1;
    }
}

} // namespace

int ndcp_takes_utf8(void)
{
    return 1;
}

ndcp_client *ndcpclient_create(ndcp_callback callback, void *user)
{
    ndcp_client *made = nullptr;
    if (!callback)
        return made;
    guarded([&] {
        if (std::shared_ptr<base::LoopThread> worker = ndcp::acquireWorker())
            made = new ndcp_client{{std::move(worker), callback, user}};
    });
    return made;
}

int ndcpclient_discover(ndcp_client *client)
{
    return client ? guarded([client] { client->client.discover(); }) : -1;
}

int32_t ndcpclient_getcnt(ndcp_client *client)
{
    return client ? client->client.count() : 0;
}

const ndcp_device *ndcpclient_getdev(ndcp_client *client, int32_t index)
{
    return client ? client->client.device(index) : nullptr;
}

int ndcpclient_get_conf(ndcp_client *client, ndcp_device *device)
{
    if (!client || !device)
        return -1;
    return guarded([=] { client->client.configure(ndcp::ConfigurationTask::Kind::Read, device); });
}

int ndcpclient_set_conf(ndcp_client *client, ndcp_device *device)
{
    if (!client || !device)
        return -1;
    return guarded([=] { client->client.configure(ndcp::ConfigurationTask::Kind::Write, device); });
}

void ndcpclient_delete(ndcp_client *client)
{
    delete client;
}
