#pragma once

#include <QStringList>
#include <QtGlobal>

namespace gallery {

/// Keeps the warnings that Qt writes about images, style sheets and painting while it lives; all
/// messages go on to where they went before. One at a time.
class MessageLog
{
public:
    MessageLog();
    ~MessageLog();

    /// What has been written since the last call.
    QStringList take();

private:
    QtMessageHandler m_before;
};

} // namespace gallery
