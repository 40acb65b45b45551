#pragma once

#include "platform/base/access_unit.h"

#include <memory>
#include <utility>

namespace rtsp {

/// The format of a stream as its frames share it: another object only when something of it changed.
class KeptFormat
{
public:
    /// A parameter set is not what it was.
    void noteChange() { m_changed = true; }

    /// @param activeSet what the format is of; null: nothing is known, nor returned
    /// @param make gives the format; called only when it may be another one
    template <class Make>
    [[nodiscard]] std::shared_ptr<const base::VideoFormat> current(const void *activeSet, Make make)
    {
        if (!activeSet)
            return nullptr;
        if (m_format && !m_changed && activeSet == m_set)
            return m_format;
        base::VideoFormat made = make();
        if (!m_format || *m_format != made)
            m_format = std::make_shared<const base::VideoFormat>(std::move(made));
        m_set = activeSet;
        m_changed = false;
        return m_format;
    }

private:
    std::shared_ptr<const base::VideoFormat> m_format;
    const void *m_set = nullptr;
    bool m_changed = false; ///< since m_format was made
};

} // namespace rtsp
