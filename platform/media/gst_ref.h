#pragma once

#include "platform/base/glib_ptr.h"

#include <gst/gst.h>

#include <utility>

namespace media {

/// Shares a reference-counted GstMiniObject (buffer, caps, sample) by value.
template <class T>
class MiniRef
{
public:
    MiniRef() = default;
    MiniRef(const MiniRef &other) : m_object(other.m_object) { ref(); }
    MiniRef(MiniRef &&other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ~MiniRef() { unref(); }
    MiniRef &operator=(MiniRef other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    /// Takes over the caller's reference.
    static MiniRef adopt(T *object)
    {
        MiniRef result;
        result.m_object = object;
        return result;
    }
    /// Adds its own reference.
    static MiniRef share(T *object)
    {
        MiniRef result;
        result.m_object = object;
        result.ref();
        return result;
    }

    T *get() const { return m_object; }
    /// A further reference, for calls that take one over.
    T *newRef() const
    {
        ref();
        return m_object;
    }
    explicit operator bool() const { return m_object != nullptr; }

private:
    void ref() const
    {
        if (m_object)
            gst_mini_object_ref(GST_MINI_OBJECT_CAST(m_object));
    }
    void unref()
    {
        if (m_object)
            gst_mini_object_unref(GST_MINI_OBJECT_CAST(m_object));
    }

    T *m_object = nullptr;
};

using BufferRef = MiniRef<GstBuffer>;
using CapsRef = MiniRef<GstCaps>;
using SampleRef = MiniRef<GstSample>;

} // namespace media
