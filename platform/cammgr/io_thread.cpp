#include "platform/cammgr/io_thread.h"

namespace cammgr {

base::LoopThread &ioThread()
{
    // Never destroyed: a player that is deleted while the process ends still finds its thread.
    static base::LoopThread *const thread = base::LoopThread::create("cammgr-io").release();
    return *thread;
}

} // namespace cammgr
