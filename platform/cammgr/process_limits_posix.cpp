#include "platform/cammgr/process_limits.h"

#include <algorithm>
#include <sys/resource.h>

namespace cammgr {

namespace {

// A stream holds 13 handles, and its connections while it is probed, recorded and commanded.
constexpr rlim_t enoughHandles = 8192;

} // namespace

void raiseHandleLimit()
{
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= enoughHandles)
        return;
    limit.rlim_cur = std::min(limit.rlim_max, enoughHandles);
    setrlimit(RLIMIT_NOFILE, &limit);
}

} // namespace cammgr
