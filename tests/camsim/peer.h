#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace camsim::test {

/// What a program that is not ours printed (both outputs) and how it ended.
struct Outcome
{
    int exitCode = -1;
    std::string output;

    bool has(const std::string &text) const { return output.find(text) != std::string::npos; }
    /// The lines of the output that begin so.
    long linesStartingWith(const std::string &start) const;
};

/// Runs a shell command; it is ended after 60 s.
Outcome run(const std::string &command);

/// A TCP connection that sends raw text and reads with a deadline.
class RawConnection
{
public:
    RawConnection(const std::string &address, int port);
    ~RawConnection();
    RawConnection(const RawConnection &) = delete;
    RawConnection &operator=(const RawConnection &) = delete;

    bool isConnected() const { return m_handle >= 0; }
    bool send(const std::string &bytes);
    /// Reads until the condition holds for everything read so far, the peer closes, or the deadline
    /// passes. Gives everything read so far.
    const std::string &readUntil(const std::function<bool(const std::string &)> &enough,
                                 std::chrono::milliseconds deadline = std::chrono::seconds(20));
    const std::string &received() const { return m_received; }
    /// The peer closed the connection.
    bool isClosed() const { return m_closed; }
    void forget() { m_received.clear(); }
    /// Of the segments that the peer may send, in bytes.
    int maximumSegment() const;

private:
    int m_handle;
    bool m_closed = false;
    std::string m_received;
};

/// A raw RTSP session over one connection, with Basic authorization and interleaved data.
class RawRtsp
{
public:
    RawRtsp(const std::string &address, int port, const std::string &path, const std::string &user,
            const std::string &password);

    /// Sends a request; gives the answer's head and body, empty when none came in time.
    std::string ask(const std::string &method, const std::string &headers = {},
                    const std::string &suffix = {});
    /// SETUP of every stream and PLAY; false when any step fails.
    bool play();
    RawConnection &connection() { return m_connection; }
    /// Waits until so many bytes of data packets came after the last answer.
    bool receivesData(std::size_t bytes);

private:
    RawConnection m_connection;
    std::string m_url;
    std::string m_authorization;
    int m_sequence = 0;
};

/// Polls until the condition holds; false after the deadline.
bool eventually(const std::function<bool()> &condition,
                std::chrono::milliseconds deadline = std::chrono::seconds(20));

} // namespace camsim::test
