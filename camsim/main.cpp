#include "camsim/control_server.h"
#include "camsim/options.h"

#include <glib-unix.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

namespace {

using namespace camsim;

/// A hundred cameras need several thousand handles.
void raiseFileLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

gboolean quit(gpointer loop)
{
    g_main_loop_quit(static_cast<GMainLoop *>(loop));
    return G_SOURCE_CONTINUE;
}

/// What comes over standard input does not matter, only that it ends.
gboolean onStdin(gint handle, GIOCondition, gpointer loop)
{
    char buffer[256];
    if (read(handle, buffer, sizeof buffer) > 0)
        return G_SOURCE_CONTINUE;
    quit(loop);
    return G_SOURCE_REMOVE;
}

int runCameras(const Options &options, GMainLoop *loop)
{
    Ticker ticker;
    Reactor reactor;

    int exitCode = 0;
    {
        Cameras cameras;
        ControlServer control(cameras);
        if (!control.open(options.controlPort)) {
            std::fprintf(stderr, "camsim: cannot open the control port\n");
            exitCode = 1;
        }
        for (int index = 0; index < options.count && exitCode == 0; ++index) {
            auto camera = std::make_unique<Camera>(Shared{ticker, reactor}, options, index);
            const std::string wrong = camera->start();
            if (!wrong.empty()) {
                std::fprintf(stderr, "camsim: %s\n", wrong.c_str());
                exitCode = 1;
                break;
            }
            std::printf("%s\n", camera->describe(control.port()).c_str());
            std::fflush(stdout);
            cameras.push_back(std::move(camera));
        }
        if (exitCode == 0)
            g_main_loop_run(loop);
    }
    return exitCode;
}

} // namespace

int main(int argc, char **argv)
{
    const CommandLine line = parseCommandLine({argv + 1, argv + argc});
    if (!line.options) {
        std::fputs(line.message.c_str(), line.exitCode == 0 ? stdout : stderr);
        return line.exitCode;
    }
    raiseFileLimit();
    std::signal(SIGPIPE, SIG_IGN);
    gst_init(nullptr, nullptr);

    GMainLoop *loop = g_main_loop_new(nullptr, FALSE);
    g_unix_signal_add(SIGTERM, quit, loop);
    g_unix_signal_add(SIGINT, quit, loop);
    if (line.options->exitWithStdin)
        g_unix_fd_add(STDIN_FILENO, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), onStdin, loop);
    if (line.options->exitWithParent)
        prctl(PR_SET_PDEATHSIG, SIGTERM);
    const int exitCode = runCameras(*line.options, loop);
    g_main_loop_unref(loop);
    return exitCode;
}
