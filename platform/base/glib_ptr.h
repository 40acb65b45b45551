#pragma once

#include <gio/gio.h>

#include <memory>

namespace base {

struct GObjectDeleter
{
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct GFreeDeleter
{
    void operator()(gpointer memory) const { g_free(memory); }
};

struct GErrorDeleter
{
    void operator()(GError *error) const { g_error_free(error); }
};

struct GSourceDeleter
{
    void operator()(GSource *source) const
    {
        g_source_destroy(source);
        g_source_unref(source);
    }
};

struct GMainContextDeleter
{
    void operator()(GMainContext *context) const { g_main_context_unref(context); }
};

struct GUriDeleter
{
    void operator()(GUri *uri) const { g_uri_unref(uri); }
};

/// Owns one reference of a GObject.
template <class T>
using GObjectPtr = std::unique_ptr<T, GObjectDeleter>;

/// Owns text that GLib has allocated.
using GTextPtr = std::unique_ptr<char, GFreeDeleter>;

using GErrorPtr = std::unique_ptr<GError, GErrorDeleter>;

/// Owns a source and removes it from its context when destroyed.
using GSourcePtr = std::unique_ptr<GSource, GSourceDeleter>;

using GMainContextPtr = std::unique_ptr<GMainContext, GMainContextDeleter>;

using GUriPtr = std::unique_ptr<GUri, GUriDeleter>;

/// One more reference to a GObject.
template <class T>
GObjectPtr<T> shareObject(T *object)
{
    return GObjectPtr<T>(static_cast<T *>(g_object_ref(object)));
}

/// Makes a context the thread's default as long as it lives. GIO and libsoup start further steps of
/// their own on the thread's default context, so it must be that while it is run.
class ThreadDefaultContext
{
public:
    explicit ThreadDefaultContext(GMainContext *context) : m_context(context)
    {
        g_main_context_push_thread_default(m_context);
    }
    ~ThreadDefaultContext() { g_main_context_pop_thread_default(m_context); }
    ThreadDefaultContext(const ThreadDefaultContext &) = delete;
    ThreadDefaultContext &operator=(const ThreadDefaultContext &) = delete;

private:
    GMainContext *m_context;
};

/// Whether asynchronous calls of GIO, started now, would end on this context.
inline bool isThreadDefault(GMainContext *context)
{
    const GMainContextPtr threadDefault(g_main_context_ref_thread_default());
    return threadDefault.get() == context;
}

} // namespace base
