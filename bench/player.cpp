// The stream engine alone: plays one camera in a plain window at the top left of the screen,
// through the C interface that the client uses, and prints when play was asked for.
//
// bench_player HOST USER PASSWORD PATH WIDTH HEIGHT

#include "platform/cammgr/cammgr.h"

#include <X11/Xlib.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <poll.h>

namespace {

std::atomic<int> probes{0};
volatile std::sig_atomic_t ending = 0;

void onMessage(int message, int, void *, char **)
{
    if (message == CAMMGR_MSG_PROBE_OK || message == CAMMGR_MSG_PROBE_FAILED)
        ++probes;
}

void waitUntil(bool (*condition)(), int deadlineMs)
{
    for (int waited = 0; waited < deadlineMs && !condition() && !ending; ++waited)
        poll(nullptr, 0, 1);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 7) {
        std::fprintf(stderr, "usage: bench_player HOST USER PASSWORD PATH WIDTH HEIGHT\n");
        return 2;
    }
    XInitThreads();
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr)
        return 1;
    std::signal(SIGTERM, [](int) { ending = 1; });

    const auto width = static_cast<unsigned>(std::atoi(argv[5]));
    const auto height = static_cast<unsigned>(std::atoi(argv[6]));
    const Window window =
        XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, width, height, 0, 0, 0);
    XMapRaised(display, window);
    XSync(display, False);

    RtspPlayer *player = RtspPlayer_Create(argv[1], argv[2], argv[3], onMessage, nullptr);
    // As in the client, the session has been probed long before somebody plays it.
    RtspPlayer_TickAlive(player);
    waitUntil([] { return probes > 0; }, 10000);

    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    std::printf(
        "play %lld\n",
        static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(now).count()));
    std::fflush(stdout);
    RtspPlayer_SetupP2PliveStream(player, argv[4], window);
    RtspPlayer_SetVolume(player, 0);
    RtspPlayer_Play(player);
    while (!ending)
        poll(nullptr, 0, 100);

    RtspPlayer_Stop_Connecting(player);
    RtspPlayer_Stop(player);
    RtspPlayer_DeleteSync(player);
    XCloseDisplay(display);
    return 0;
}
