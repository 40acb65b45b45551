#pragma once

#include "camsim/child_process.h"

#include <chrono>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

/// A program under measurement, which ends with this object.
class MeasuredProcess : public zelvaro::test::ChildProcess
{
public:
    /// wantOutput: its output is for readLine(). Throws std::runtime_error when there is no such
    /// program.
    explicit MeasuredProcess(const std::vector<std::string> &command, bool wantOutput = false);

    Clock::time_point started() const { return m_started; }
    /// CPU time of all threads so far, in seconds.
    double cpuSeconds() const;
    /// Proportional set size in megabytes: shared pages count by their share.
    double memoryMegabytes() const;
    int threads() const;

private:
    MeasuredProcess(const std::vector<std::string> &command, bool wantOutput,
                    Clock::time_point started);

    const Clock::time_point m_started;
};

/// Whether a program of that name is on PATH.
bool isInstalled(const std::string &program);

} // namespace bench
