#pragma once

#include "platform/base/glib_ptr.h"

#include <chrono>
#include <functional>

/// A separate main context for one test, run by the thread of the test.
class TestContext
{
public:
    TestContext() : m_context(g_main_context_new()), m_threadDefault(m_context.get()) {}

    ~TestContext()
    {
        // Cancelled operations come back to free what they hold.
        while (g_main_context_iteration(m_context.get(), FALSE)) {
        }
    }

    [[nodiscard]] GMainContext *get() const { return m_context.get(); }

    /// Runs the context until the condition holds; false when it did not within the limit. The
    /// condition is looked at after everything that happens on the context, and now and then for
    /// what happens elsewhere.
    [[nodiscard]] bool runUntil(const std::function<bool()> &condition,
                                std::chrono::milliseconds limit = std::chrono::seconds(30)) const
    {
        const base::GSourcePtr tick(g_timeout_source_new(50));
        g_source_set_callback(tick.get(), goOn, nullptr, nullptr);
        g_source_attach(tick.get(), m_context.get());
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= deadline)
                return false;
            g_main_context_iteration(m_context.get(), TRUE);
        }
        return true;
    }

    /// Runs what is ready, without waiting.
    void drain() const
    {
        while (g_main_context_iteration(m_context.get(), FALSE)) {
        }
    }

    /// Makes a waiting runUntil look at its condition; from any thread.
    void wakeUp() const { g_main_context_wakeup(m_context.get()); }

private:
    static gboolean goOn(gpointer) { return G_SOURCE_CONTINUE; }

    base::GMainContextPtr m_context;
    base::ThreadDefaultContext m_threadDefault;
};
