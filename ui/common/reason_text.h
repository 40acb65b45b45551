#pragma once

#include "camera/optional_functions.h"

#include <QString>

class CCamera;

namespace zelvaro {

/// In words for the user: why a camera is not shown, and what can be done about it. Empty when
/// there is no reason.
QString reasonText(const CameraReason &reason);
/// The same for a session; what its state alone tells where the library tells no reason.
QString reasonText(const CCamera &camera);

} // namespace zelvaro
