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

enum class Probe
{
    Waiting,
    Answered,
    Failed
};

std::atomic<Probe> probe{Probe::Waiting};
volatile std::sig_atomic_t ending = 0;

void onMessage(int message, int, void *, char **)
{
    if (message == CAMMGR_MSG_PROBE_OK)
        probe = Probe::Answered;
    else if (message == CAMMGR_MSG_PROBE_FAILED)
        probe = Probe::Failed;
}

/// As in the client, the session has been probed long before somebody plays it.
bool connectSession(RtspPlayer *player)
{
    for (int attempt = 0; attempt < 10 && !ending; ++attempt) {
        probe = Probe::Waiting;
        RtspPlayer_TickAlive(player);
        for (int waited = 0; waited < 10'000 && probe == Probe::Waiting && !ending; ++waited)
            poll(nullptr, 0, 1);
        if (probe == Probe::Answered)
            return true;
        poll(nullptr, 0, 500);
    }
    return false;
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
    if (!connectSession(player))
        std::fprintf(stderr, "bench_player: the camera does not answer\n");

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
