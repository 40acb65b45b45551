#pragma once

#include "platform/onvif/glib_ptr.h"

#include <functional>
#include <utility>

namespace onvif {

/// Calls a function once on a main context after some milliseconds, unless it is destroyed before.
/// It may be destroyed or replaced inside that function.
class Timer
{
public:
    Timer() = default;

    Timer(GMainContext *context, unsigned milliseconds, std::function<void()> function)
    {
        m_source.reset(g_timeout_source_new(milliseconds));
        g_source_set_callback(m_source.get(), dispatch,
                              new std::function<void()>(std::move(function)), destroy);
        g_source_attach(m_source.get(), context);
    }

private:
    using Function = std::function<void()>;

    static gboolean dispatch(gpointer data)
    {
        const Function function = std::move(*static_cast<Function *>(data));
        function();
        return G_SOURCE_REMOVE;
    }

    static void destroy(gpointer data) { delete static_cast<Function *>(data); }

    GSourcePtr m_source;
};

} // namespace onvif
