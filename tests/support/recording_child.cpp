// Records one stream until it is killed: recording_child URL USER PASSWORD BASE-PATH

#include "platform/cammgr/live_stream.h"

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <unistd.h>

int main(int count, char **arguments)
{
    if (count != 5)
        return 2;
    std::mutex lock;
    std::condition_variable changed;
    bool plays = false;
    cammgr::LiveStream stream({.firstFrame =
                                   [&] {
                                       std::lock_guard held(lock);
                                       plays = true;
                                       changed.notify_all();
                                   },
                               .ended = [](const cammgr::StreamFailure &) { _exit(3); },
                               .undecodable = {},
                               .wantKeyFrame = {}});
    stream.setVolume(0);
    stream.start({{.url = arguments[1], .username = arguments[2], .password = arguments[3]}, 0});
    std::unique_lock held(lock);
    changed.wait(held, [&] { return plays; });
    if (stream.beginWriting(arguments[4], 104857600) != 0)
        return 1;
    std::puts("writing");
    std::fflush(stdout);
    for (;;)
        pause();
}
