#include "camsim/child_process.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace zelvaro::test {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int pollPeriod = 5; // milliseconds

struct Pipe
{
    int read = -1;
    int write = -1;
};

/// Closed in every other process that this one starts, or a child would outlive its input.
Pipe makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    return {ends[0], ends[1]};
}

void closeHandle(int &handle)
{
    if (handle >= 0)
        close(handle);
    handle = -1;
}

} // namespace

std::string LineReader::next(std::chrono::milliseconds deadline)
{
    const auto end = Clock::now() + deadline;
    while (true) {
        if (const auto newline = m_pending.find('\n'); newline != std::string::npos) {
            std::string line = m_pending.substr(0, newline);
            m_pending.erase(0, newline + 1);
            return line;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd waiting{m_handle, POLLIN, 0};
        const int ready = left.count() > 0 ? poll(&waiting, 1, static_cast<int>(left.count())) : 0;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return {};
        std::array<char, 4096> buffer;
        const ssize_t count = read(m_handle, buffer.data(), buffer.size());
        if (count <= 0)
            return {};
        m_pending.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

ChildProcess::ChildProcess(std::vector<std::string> command, const Options &options)
    : m_patience(options.patience)
{
    Pipe input;
    Pipe output;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (options.holdsInput) {
        input = makePipe();
        posix_spawn_file_actions_adddup2(&actions, input.read, STDIN_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    if (options.readsOutput) {
        output = makePipe();
        posix_spawn_file_actions_adddup2(&actions, output.write, STDOUT_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    }
    if (!options.showsErrors)
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);

    std::vector<char *> arguments;
    for (std::string &word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const int failed =
        posix_spawnp(&m_pid, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    closeHandle(input.read);
    closeHandle(output.write);
    m_input = input.write;
    m_output = output.read;
    m_lines = LineReader(m_output);
    if (failed != 0) {
        closeHandle(m_input);
        closeHandle(m_output);
        throw std::runtime_error("cannot start " + command.front());
    }
}

ChildProcess::~ChildProcess()
{
    closeHandle(m_input);
    closeHandle(m_output);
    askToEnd();
    const auto deadline = Clock::now() + m_patience;
    while (waitpid(m_pid, nullptr, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            ::kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
            return;
        }
        poll(nullptr, 0, pollPeriod);
    }
}

void ChildProcess::askToEnd() const
{
    ::kill(m_pid, SIGTERM);
}

void ChildProcess::kill() const
{
    ::kill(m_pid, SIGKILL);
    siginfo_t info{};
    waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOWAIT);
}

bool ChildProcess::isRunning() const
{
    siginfo_t info{};
    return waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
}

} // namespace zelvaro::test
