#include "tests/fakes/fake_ndcp.h"

#include "tests/fakes/fake_thread.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>

/// All fields but the constant ones belong to the library's mutex.
struct ndcp_client
{
    ndcp_client(ndcp_callback called, void *context) : callback(called), user(context) {}

    const ndcp_callback callback;
    void *const user;
    std::vector<ndcp_device> found;
    ndcp_device *pending = nullptr; ///< record of the read that is under way
};

namespace {

struct Library
{
    std::mutex mutex; ///< protects all below and the clients' fields
    std::vector<std::unique_ptr<ndcp_client>> clients;
    std::vector<ndcp_device> devices;
    std::optional<std::int32_t> count;
    int takesUtf8 = 1;
    ndcp_device conf{};
    std::map<int, int> answers; ///< event to error
    std::map<std::string, int> results;
    int failures = 0;
    std::vector<std::string> calls;
    std::vector<ndcp_device> asked;
    std::vector<ndcp_device> written;
    std::vector<std::string> violations;
    fake::DeliveryThread thread{"fake_ndcp"};
};

Library &library()
{
    static Library &instance = *new Library;
    return instance;
}

template <std::size_t Size>
void setText(char (&field)[Size], const std::string &text)
{
    std::memset(field, 0, Size);
    std::memcpy(field, text.data(), std::min(text.size(), Size - 1));
}

void fill(ndcp_device &device, const ndcp_device &conf)
{
    const ndcp_device caller = device;
    device = conf;
    std::memcpy(device.uid, caller.uid, sizeof device.uid);
    std::memcpy(device.username, caller.username, sizeof device.username);
    std::memcpy(device.password, caller.password, sizeof device.password);
}

/// Does what the event says, then calls the program. On the library's thread.
void deliver(ndcp_client *client, int message, int error)
{
    {
        const std::lock_guard lock(library().mutex);
        if (message == NDCP_EVENT_DISCOVERY && error == 0)
            client->found = library().devices;
        if (message == NDCP_EVENT_GET_CONF) {
            if (error == 0 && client->pending)
                fill(*client->pending, library().conf);
            client->pending = nullptr;
        }
    }
    client->callback(message, error, client->user);
}

void post(ndcp_client *client, int message, int error)
{
    library().thread.post(
        client, [=] { deliver(client, message, error); });
}

/// Notes the call and checks the client. With the mutex locked.
bool enter(const char *name, const ndcp_client *client)
{
    Library &lib = library();
    lib.calls.emplace_back(name);
    if (lib.thread.isCurrent())
        lib.violations.push_back(std::string(name) + ": called from the callback");
    const bool known = std::any_of(lib.clients.begin(), lib.clients.end(),
                                   [&](const auto &c) { return c.get() == client; });
    if (!known && client)
        lib.violations.push_back(std::string(name) + ": unknown client");
    return known;
}

/// A request that the script may refuse and may answer at once. With the mutex locked.
int request(const char *name, int event, ndcp_client *client)
{
    const auto result = library().results.find(name);
    if (result != library().results.end() && result->second < 0)
        return result->second;
    const auto answer = library().answers.find(event);
    if (answer != library().answers.end())
        post(client, event, answer->second);
    return result == library().results.end() ? 0 : result->second;
}

void setAnswer(int event, std::optional<int> error)
{
    const std::lock_guard lock(library().mutex);
    library().answers.erase(event);
    if (error)
        library().answers.emplace(event, *error);
}

} // namespace

namespace fake_ndcp {

void reset()
{
    Library &lib = library();
    lib.thread.stop();
    const std::lock_guard lock(lib.mutex);
    lib.clients.clear();
    lib.devices.clear();
    lib.count.reset();
    lib.takesUtf8 = 1;
    lib.conf = {};
    lib.answers.clear();
    lib.results.clear();
    lib.failures = 0;
    lib.calls.clear();
    lib.asked.clear();
    lib.written.clear();
    lib.violations.clear();
}

ndcp_device device(const std::string &uid, const std::string &name, std::uint32_t ip, int httpPort)
{
    ndcp_device made{};
    const unsigned char mac[] = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, static_cast<unsigned char>(ip)};
    std::memcpy(made.mac, mac, sizeof mac);
    made.ip = ip;
    made.http_port = std::int16_t(httpPort);
    setText(made.model, "Model");
    setText(made.name, name);
    setText(made.location, "Location");
    setText(made.uid, uid);
    made.mask = 0xFFFFFF00;
    made.gateway = (ip & made.mask) | 1;
    made.dns1 = made.gateway;
    return made;
}

void setDevices(const std::vector<ndcp_device> &devices)
{
    const std::lock_guard lock(library().mutex);
    library().devices = devices;
}

void setTakesUtf8(int answer)
{
    const std::lock_guard lock(library().mutex);
    library().takesUtf8 = answer;
}

void setCount(std::optional<std::int32_t> count)
{
    const std::lock_guard lock(library().mutex);
    library().count = count;
}

void setConf(const ndcp_device &conf)
{
    const std::lock_guard lock(library().mutex);
    library().conf = conf;
}

void answerDiscover(std::optional<int> error)
{
    setAnswer(NDCP_EVENT_DISCOVERY, error);
}

void answerGetConf(std::optional<int> error)
{
    setAnswer(NDCP_EVENT_GET_CONF, error);
}

void answerSetConf(std::optional<int> error)
{
    setAnswer(NDCP_EVENT_SET_CONF, error);
}

void finish(int message, int error)
{
    const std::lock_guard lock(library().mutex);
    if (!library().clients.empty())
        post(library().clients.back().get(), message, error);
}

void failCreate(int times)
{
    const std::lock_guard lock(library().mutex);
    library().failures = times;
}

void setResult(const std::string &request, int result)
{
    const std::lock_guard lock(library().mutex);
    library().results[request] = result;
}

std::vector<std::string> calls()
{
    const std::lock_guard lock(library().mutex);
    return library().calls;
}

int count(const std::string &name)
{
    const std::vector<std::string> all = calls();
    return int(std::count(all.begin(), all.end(), name));
}

int clients()
{
    const std::lock_guard lock(library().mutex);
    return int(library().clients.size());
}

std::vector<ndcp_device> asked()
{
    const std::lock_guard lock(library().mutex);
    return library().asked;
}

std::vector<ndcp_device> written()
{
    const std::lock_guard lock(library().mutex);
    return library().written;
}

std::vector<std::string> contractViolations()
{
    const std::lock_guard lock(library().mutex);
    return library().violations;
}

bool waitDelivered(int milliseconds)
{
    return library().thread.waitIdle(milliseconds);
}

} // namespace fake_ndcp

int ndcp_takes_utf8(void)
{
    const std::lock_guard lock(library().mutex);
    return library().takesUtf8;
}

ndcp_client *ndcpclient_create(ndcp_callback callback, void *user)
{
    const std::lock_guard lock(library().mutex);
    enter("create", nullptr);
    if (library().failures > 0) {
        --library().failures;
        return nullptr;
    }
    library().clients.push_back(std::make_unique<ndcp_client>(callback, user));
    return library().clients.back().get();
}

int ndcpclient_discover(ndcp_client *client)
{
    const std::lock_guard lock(library().mutex);
    return enter("discover", client) ? request("discover", NDCP_EVENT_DISCOVERY, client) : -1;
}

int32_t ndcpclient_getcnt(ndcp_client *client)
{
    const std::lock_guard lock(library().mutex);
    if (!enter("getcnt", client))
        return 0;
    return library().count.value_or(int32_t(client->found.size()));
}

const ndcp_device *ndcpclient_getdev(ndcp_client *client, int32_t index)
{
    const std::lock_guard lock(library().mutex);
    if (!enter("getdev", client) || index < 0 || size_t(index) >= client->found.size())
        return nullptr;
    return &client->found[size_t(index)];
}

int ndcpclient_get_conf(ndcp_client *client, ndcp_device *device)
{
    const std::lock_guard lock(library().mutex);
    if (!enter("get_conf", client) || !device)
        return -1;
    library().asked.push_back(*device);
    client->pending = device;
    return request("get_conf", NDCP_EVENT_GET_CONF, client);
}

int ndcpclient_set_conf(ndcp_client *client, ndcp_device *device)
{
    const std::lock_guard lock(library().mutex);
    if (!enter("set_conf", client) || !device)
        return -1;
    library().written.push_back(*device);
    return request("set_conf", NDCP_EVENT_SET_CONF, client);
}

void ndcpclient_delete(ndcp_client *client)
{
    {
        const std::lock_guard lock(library().mutex);
        if (!enter("delete", client))
            return;
    }
    library().thread.drop(client);
    const std::lock_guard lock(library().mutex);
    std::erase_if(library().clients, [&](const auto &c) { return c.get() == client; });
}
