#pragma once

#include <memory>

namespace base {

/// Lets go of an object in a later turn of this thread's loop: for objects that are given up inside
/// a call of their own.
void destroyLater(std::shared_ptr<void> object);

} // namespace base
