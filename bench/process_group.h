#pragma once

#include "bench/measured_process.h"

#include <memory>

namespace bench {

/// Programs that do one job together; their cost is that of all.
class ProcessGroup
{
public:
    /// See MeasuredProcess.
    void start(const std::vector<std::string> &command, bool wantOutput = false);
    /// Asks all to end at once, and waits for them.
    ~ProcessGroup();

    MeasuredProcess &at(std::size_t index) { return *m_processes.at(index); }
    std::size_t size() const { return m_processes.size(); }

    /// As of MeasuredProcess.
    double cpuSeconds() const;
    double memoryMegabytes() const;
    int threads() const;

private:
    std::vector<std::unique_ptr<MeasuredProcess>> m_processes;
};

} // namespace bench
