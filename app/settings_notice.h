#pragma once

#include "settings/camera_settings.h"

namespace zelvaro {

/// What is wrong with the settings file, in words for the user; the worst first, empty when
/// nothing is.
[[nodiscard]] QString settingsNotice(const CameraSettings &settings);

} // namespace zelvaro
