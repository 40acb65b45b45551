#include "bench/measured_process.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace bench {

namespace {

constexpr auto patience = std::chrono::seconds(3); // some players take no notice of SIGTERM

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

// The time is read before the base starts the program.
MeasuredProcess::MeasuredProcess(const std::vector<std::string> &command, bool wantOutput)
    : MeasuredProcess(command, wantOutput, Clock::now())
{
}

MeasuredProcess::MeasuredProcess(const std::vector<std::string> &command, bool wantOutput,
                                 Clock::time_point started)
    : ChildProcess(command, {.readsOutput = wantOutput, .patience = patience})
    , m_started(started)
{
}

double MeasuredProcess::cpuSeconds() const
{
    std::ifstream stream(procFile(pid(), "stat"));
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

double MeasuredProcess::memoryMegabytes() const
{
    return numberBehind(procFile(pid(), "smaps_rollup"), "Pss:") / 1024;
}

int MeasuredProcess::threads() const
{
    return static_cast<int>(numberBehind(procFile(pid(), "status"), "Threads:"));
}

} // namespace bench
