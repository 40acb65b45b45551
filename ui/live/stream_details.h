#pragma once

#include "platform/cammgr/cammgr.h"

#include <QString>

namespace zelvaro {

/// What a stream is and how well it comes, in lines for the user.
QString figuresText(const RtspPlayerFigures &figures);

} // namespace zelvaro
