#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

/// A program under measurement. The destructor ends it and waits for it.
class ChildProcess
{
public:
    /// Output is sent to /dev/null unless wantOutput; then read it with readLine(). Throws
    /// std::runtime_error when there is no such program.
    explicit ChildProcess(const std::vector<std::string> &command, bool wantOutput = false);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    Clock::time_point started() const { return m_started; }
    bool isRunning() const;
    /// Asks it to end, and does not wait.
    void askToEnd() const;
    /// Ends it at once, without a chance to finish anything; it has ended when this returns.
    void kill() const;

    /// Next line of its output; empty after the deadline or at the end.
    std::string readLine(std::chrono::milliseconds deadline);

    /// CPU time of all threads so far, in seconds.
    double cpuSeconds() const;
    /// Proportional set size in megabytes: shared pages count by their share.
    double memoryMegabytes() const;
    int threads() const;

private:
    pid_t m_pid = -1;
    int m_output = -1;
    std::string m_pending;
    Clock::time_point m_started;
};

/// Whether a program of that name is on PATH.
bool isInstalled(const std::string &program);

} // namespace bench
