// The stream engine alone: plays cameras in plain windows, through the C interface that the client
// uses, and prints when play was requested.
//
// bench_player USER PASSWORD PATH {HOST X Y WIDTH HEIGHT}...: one window for each camera.

#include "bench/engine_session.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <vector>

namespace {

using bench::EngineSession;
using Sessions = std::vector<std::unique_ptr<EngineSession>>;

constexpr int wordsBeforeCameras = 4;
constexpr int wordsOfCamera = 5;

volatile std::sig_atomic_t ending = 0;

Window openWindow(Display *display, char **place)
{
    const Window window =
        XCreateSimpleWindow(display, DefaultRootWindow(display), std::atoi(place[0]),
                            std::atoi(place[1]), static_cast<unsigned>(std::atoi(place[2])),
                            static_cast<unsigned>(std::atoi(place[3])), 0, 0, 0);
    XMapRaised(display, window);
    return window;
}

/// As in the client, sessions have been probed long before somebody plays them.
bool connectSessions(const Sessions &sessions)
{
    for (int attempt = 0; attempt < 10 && !ending; ++attempt) {
        for (const auto &session : sessions)
            if (!session->isConnected())
                session->probe();
        const auto probing = [](const auto &session) { return session->isProbing(); };
        while (!ending && std::any_of(sessions.begin(), sessions.end(), probing))
            poll(nullptr, 0, 1);
        if (std::all_of(sessions.begin(), sessions.end(),
                        [](const auto &session) { return session->isConnected(); }))
            return true;
        poll(nullptr, 0, 500);
    }
    return false;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc <= wordsBeforeCameras || (argc - wordsBeforeCameras) % wordsOfCamera != 0) {
        std::fprintf(stderr, "usage: bench_player USER PASSWORD PATH {HOST X Y WIDTH HEIGHT}...\n");
        return 2;
    }
    XInitThreads();
    Display *display = XOpenDisplay(nullptr);
    if (display == nullptr)
        return 1;
    std::signal(SIGTERM, [](int) { ending = 1; });

    Sessions sessions;
    std::vector<Window> windows;
    for (char **camera = argv + wordsBeforeCameras; camera < argv + argc; camera += wordsOfCamera) {
        windows.push_back(openWindow(display, camera + 1));
        sessions.push_back(std::make_unique<EngineSession>(camera[0], argv[1], argv[2]));
    }
    XSync(display, False);
    if (!connectSessions(sessions))
        std::fprintf(stderr, "bench_player: a camera does not answer\n");

    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    std::printf(
        "play %lld\n",
        static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(now).count()));
    std::fflush(stdout);
    for (std::size_t i = 0; i < sessions.size(); ++i)
        sessions[i]->setUp(argv[3], windows[i]);
    // Again and again, as the client does: a stream that broke off is started again.
    while (!ending) {
        for (const auto &session : sessions)
            session->play();
        poll(nullptr, 0, 1000);
    }

    for (const auto &session : sessions)
        session->stop();
    sessions.clear();
    XCloseDisplay(display);
    return 0;
}
