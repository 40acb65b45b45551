#include "platform/base/destroy_later.h"

#include <glib.h>

#include <utility>

namespace base {

void destroyLater(std::shared_ptr<void> object)
{
    GSource *source = g_timeout_source_new(0);
    g_source_set_callback(
        source, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; },
        new std::shared_ptr<void>(std::move(object)),
        [](gpointer held) {
            std::default_delete<std::shared_ptr<void>>()(
                static_cast<std::shared_ptr<void> *>(held));
        });
    g_source_attach(source, g_main_context_get_thread_default());
    g_source_unref(source);
}

} // namespace base
