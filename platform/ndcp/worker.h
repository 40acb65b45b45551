#pragma once

#include "platform/base/loop_thread.h"

#include <memory>

namespace ndcp {

/// The thread of the library, named "ndcp", on which all network traffic and all callbacks happen:
/// the running one, or a new one. It ends with the last owner. nullptr when no thread can be made.
std::shared_ptr<base::LoopThread> acquireWorker();

} // namespace ndcp
