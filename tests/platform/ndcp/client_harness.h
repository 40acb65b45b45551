#pragma once

#include "platform/ndcp/ndcp.h"
#include "tests/platform/onvif/support/test_context.h"

#include <gtest/gtest.h>

#include <mutex>
#include <string>
#include <vector>

/// Where searches look from now on: these targets only, nothing by multicast. Not while a client
/// lives, because the library's thread reads the environment.
inline void searchOnlyAt(const std::string &targets)
{
    g_setenv("ZELVARO_DISCOVERY_TARGETS", targets.c_str(), TRUE);
    g_setenv("ZELVARO_DISCOVERY_MULTICAST", "0", TRUE);
}

/// A client of the C interface that keeps its events, run together with a context on which the
/// test's own servers live.
class ClientHarness
{
public:
    struct Event
    {
        int message = 0;
        int error = 0;

        bool operator==(const Event &) const = default;
    };

    explicit ClientHarness(const TestContext &context)
        : m_context(context)
        , m_client(ndcpclient_create(callback, this))
    {
        EXPECT_NE(m_client, nullptr);
    }

    ~ClientHarness() { destroy(); }
    ClientHarness(const ClientHarness &) = delete;
    ClientHarness &operator=(const ClientHarness &) = delete;

    [[nodiscard]] ndcp_client *get() const { return m_client; }

    void destroy()
    {
        ndcpclient_delete(m_client);
        m_client = nullptr;
    }

    /// Waits for one event more than were taken before.
    Event nextEvent()
    {
        EXPECT_TRUE(m_context.runUntil([this] { return eventCount() > m_taken; },
                                       std::chrono::seconds(60)));
        const std::lock_guard lock(m_mutex);
        return m_taken < m_events.size() ? m_events[m_taken++] : Event();
    }

    [[nodiscard]] std::size_t eventCount() const
    {
        const std::lock_guard lock(m_mutex);
        return m_events.size();
    }

    std::vector<ndcp_device> search()
    {
        EXPECT_EQ(ndcpclient_discover(m_client), 0);
        EXPECT_EQ(nextEvent(), (Event{NDCP_EVENT_DISCOVERY, 0}));
        std::vector<ndcp_device> devices;
        for (int i = 0; i < ndcpclient_getcnt(m_client); ++i)
            devices.push_back(*ndcpclient_getdev(m_client, i));
        return devices;
    }

    /// Error of the event that ends the request.
    int read(ndcp_device &record)
    {
        EXPECT_EQ(ndcpclient_get_conf(m_client, &record), 0);
        const Event event = nextEvent();
        EXPECT_EQ(event.message, NDCP_EVENT_GET_CONF);
        return event.error;
    }

    int write(ndcp_device &record)
    {
        EXPECT_EQ(ndcpclient_set_conf(m_client, &record), 0);
        const Event event = nextEvent();
        EXPECT_EQ(event.message, NDCP_EVENT_SET_CONF);
        return event.error;
    }

private:
    static void callback(int message, int error, void *user)
    {
        auto *self = static_cast<ClientHarness *>(user);
        {
            const std::lock_guard lock(self->m_mutex);
            self->m_events.push_back({message, error});
        }
        self->m_context.wakeUp();
    }

    const TestContext &m_context;
    mutable std::mutex m_mutex; ///< protects m_events
    std::vector<Event> m_events;
    std::size_t m_taken = 0;
    ndcp_client *m_client; ///< last: the callback uses all others
};
