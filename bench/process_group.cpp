#include "bench/process_group.h"

#include <numeric>

namespace bench {

void ProcessGroup::start(const std::vector<std::string> &command, bool wantOutput)
{
    m_processes.push_back(std::make_unique<MeasuredProcess>(command, wantOutput));
}

ProcessGroup::~ProcessGroup()
{
    for (const auto &process : m_processes)
        process->askToEnd();
}

double ProcessGroup::cpuSeconds() const
{
    return std::accumulate(
        m_processes.begin(), m_processes.end(), 0.0,
        [](double sum, const auto &process) { return sum + process->cpuSeconds(); });
}

double ProcessGroup::memoryMegabytes() const
{
    return std::accumulate(
        m_processes.begin(), m_processes.end(), 0.0,
        [](double sum, const auto &process) { return sum + process->memoryMegabytes(); });
}

int ProcessGroup::threads() const
{
    return std::accumulate(
        m_processes.begin(), m_processes.end(), 0,
        [](int sum, const auto &process) { return sum + process->threads(); });
}

} // namespace bench
