#include "platform/media/process_limits.h"

#include <algorithm>
#ifdef __GLIBC__
#include <malloc.h>
#endif
#include <sys/resource.h>

namespace media {

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

void releaseFreeMemory()
{
#ifdef __GLIBC__
    // It gives back by itself only what lies at the end of an arena.
    malloc_trim(0);
#endif
}

} // namespace media
