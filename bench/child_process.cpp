#include "bench/child_process.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <spawn.h>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace bench {

namespace {

constexpr auto patience = std::chrono::seconds(3); // between SIGTERM and SIGKILL to a child

std::string procFile(pid_t pid, const char *name)
{
    return "/proc/" + std::to_string(pid) + "/" + name;
}

/// First number behind a key like "Pss:" in a file of /proc.
double numberBehind(const std::string &file, const std::string &key)
{
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);)
        if (line.compare(0, key.size(), key) == 0)
            return std::strtod(line.c_str() + key.size(), nullptr);
    return 0;
}

} // namespace

bool isInstalled(const std::string &program)
{
    const char *path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');)
        if (access((folder + "/" + program).c_str(), X_OK) == 0)
            return true;
    return false;
}

ChildProcess::ChildProcess(const std::vector<std::string> &command, bool wantOutput)
{
    std::vector<char *> arguments;
    for (const std::string &word : command)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);

    int ends[2] = {-1, -1};
    if (wantOutput && pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    if (wantOutput)
        posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    else
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    m_started = Clock::now();
    const int failed =
        posix_spawnp(&m_pid, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (wantOutput) {
        close(ends[1]);
        m_output = ends[0];
    }
    if (failed != 0)
        throw std::runtime_error("cannot start " + command.front());
}

ChildProcess::~ChildProcess()
{
    if (m_output >= 0)
        close(m_output);
    askToEnd();
    const auto deadline = Clock::now() + patience;
    while (waitpid(m_pid, nullptr, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            ::kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
            return;
        }
        poll(nullptr, 0, 10);
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

std::string ChildProcess::readLine(std::chrono::milliseconds deadline)
{
    const auto end = Clock::now() + deadline;
    while (true) {
        if (const auto newline = m_pending.find('\n'); newline != std::string::npos) {
            std::string line = m_pending.substr(0, newline);
            m_pending.erase(0, newline + 1);
            return line;
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        pollfd waiting{m_output, POLLIN, 0};
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) <= 0)
            return {};
        char buffer[512];
        const ssize_t count = read(m_output, buffer, sizeof buffer);
        if (count <= 0)
            return {};
        m_pending.append(buffer, static_cast<std::size_t>(count));
    }
}

double ChildProcess::cpuSeconds() const
{
    std::ifstream stream(procFile(m_pid, "stat"));
    std::string text((std::istreambuf_iterator<char>(stream)), {});
    const auto afterName = text.rfind(')'); // the name may hold blanks
    if (afterName == std::string::npos)
        return 0;
    std::istringstream fields(text.substr(afterName + 2));
    std::string field;
    for (int number = 3; number < 14; ++number)
        fields >> field;
    double user = 0, system = 0;
    fields >> user >> system;
    return (user + system) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

double ChildProcess::memoryMegabytes() const
{
    return numberBehind(procFile(m_pid, "smaps_rollup"), "Pss:") / 1024;
}

int ChildProcess::threads() const
{
    return static_cast<int>(numberBehind(procFile(m_pid, "status"), "Threads:"));
}

} // namespace bench
