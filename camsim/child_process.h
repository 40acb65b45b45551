#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace zelvaro::test {

/// Reads a pipe or a socket line by line. Does not own the handle.
class LineReader
{
public:
    explicit LineReader(int handle) : m_handle(handle) {}

    /// The next line without its end; empty after the deadline and at the end of the stream.
    std::string next(std::chrono::milliseconds deadline);

private:
    int m_handle;
    std::string m_pending;
};

/// Another program, which ends with this object. Use from one thread.
class ChildProcess
{
public:
    struct Options
    {
        bool readsOutput = false; ///< its output is for readLine(), else for nobody
        bool holdsInput = false;  ///< its input ends with this process, else at once
        bool showsErrors = false; ///< its errors are those of this process, else for nobody
        /// Between the request to end and the end by force.
        std::chrono::milliseconds patience = std::chrono::seconds(20);
    };

    /// command: a program, which is looked up on PATH, and its arguments. Throws std::runtime_error
    /// when it cannot be started.
    ChildProcess(std::vector<std::string> command, const Options &options);
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    pid_t pid() const { return m_pid; }
    bool isRunning() const;
    /// Requests it to end, and does not wait.
    void askToEnd() const;
    /// Ends it at once, without a chance to finish anything; it has ended when this returns.
    void kill() const;

    /// See LineReader::next().
    std::string readLine(std::chrono::milliseconds deadline) { return m_lines.next(deadline); }

private:
    const std::chrono::milliseconds m_patience;
    pid_t m_pid = -1;
    int m_input = -1;
    int m_output = -1;
    LineReader m_lines{-1};
};

} // namespace zelvaro::test
