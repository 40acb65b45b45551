#pragma once

#include <glib-object.h>

#include <memory>

namespace cammgr {

struct ObjectUnref
{
    void operator()(void *object) const { g_object_unref(object); }
};

/// Owns one reference of a GObject.
template <typename T>
using ObjectPtr = std::unique_ptr<T, ObjectUnref>;

struct ErrorFree
{
    void operator()(GError *error) const { g_error_free(error); }
};
using ErrorPtr = std::unique_ptr<GError, ErrorFree>;

struct GlibFree
{
    void operator()(void *memory) const { g_free(memory); }
};
using TextPtr = std::unique_ptr<char, GlibFree>;

} // namespace cammgr
