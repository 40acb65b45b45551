#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace zelvaro::test {

/// What becomes of the packets of a link, in both directions.
struct LinkConditions
{
    std::chrono::milliseconds delay{0};  ///< mean, of one direction
    std::chrono::milliseconds jitter{0}; ///< standard deviation; packets stay in their order
    double loss = 0;                     ///< share of the packets, 0 to 1
    long bitsPerSecond = 0;              ///< 0: as fast as it goes
};

/**
 * Two network namespaces and a link of Ethernet packets (MTU 1500) between them: a TUN device in
 * each, and a thread that carries the packets from one to the other, late, or not at all. The
 * constructor moves the calling thread, and with it all threads and programs that it starts later,
 * to the viewer's side, which has nothing else but its own loopback. As root, or where users may
 * make namespaces.
 */
class NetworkLink
{
public:
    /// Throws std::runtime_error, with what is missing, where such links cannot be made.
    explicit NetworkLink(const LinkConditions &conditions);
    ~NetworkLink();
    NetworkLink(const NetworkLink &) = delete;
    NetworkLink &operator=(const NetworkLink &) = delete;

    static std::string viewerAddress() { return "10.99.0.1"; }
    static std::string cameraAddress() { return "10.99.0.2"; }

    /// From now on. Any thread.
    void setConditions(const LinkConditions &conditions);
    /// Runs work of the calling thread on the camera's side: sockets and programs that it makes
    /// there stay there.
    void atCamera(const std::function<void()> &work);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace zelvaro::test
