#pragma once

#include "platform/base/loop_thread.h"

namespace cammgr {

/// The one thread on which all players wait for the network: streams, probes, look-ups, command
/// requests. Started at first use; it lives as long as the process, so that nobody has to stop it.
base::LoopThread &ioThread();

} // namespace cammgr
