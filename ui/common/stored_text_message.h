#pragma once

#include "settings/stored_text.h"

namespace zelvaro {

/// Why a text cannot be saved in the settings file, in words for the user; empty when it can.
/// @param label what the user knows the text as, such as "User Name"
[[nodiscard]] QString storedTextMessage(SettingsText which, const QString &text,
                                        const QString &label);

} // namespace zelvaro
