#include "tests/support/network_link.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <poll.h>
#include <sched.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <deque>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace zelvaro::test {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int mtu = 1500;
constexpr size_t longestQueue = 1000; // packets, as in a usual router

[[noreturn]] void fail(const std::string &what)
{
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

/// A handle that is closed with its owner.
class Handle
{
public:
    explicit Handle(int value = -1) : m_value(value) {}
    ~Handle()
    {
        if (m_value >= 0)
            ::close(m_value);
    }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    int get() const { return m_value; }
    void reset(int value)
    {
        if (m_value >= 0)
            ::close(m_value);
        m_value = value;
    }

private:
    int m_value;
};

void writeText(const std::string &path, const std::string &text)
{
    const Handle file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.get() < 0 || ::write(file.get(), text.data(), text.size()) < 0)
        fail("cannot write " + path);
}

/// Those who are not root get a user namespace in which they are.
void becomeAdministrator()
{
    const uid_t user = ::geteuid();
    const gid_t group = ::getegid();
    if (user == 0)
        return;
    if (::unshare(CLONE_NEWUSER) != 0)
        fail("user namespaces are not permitted");
    const auto same = [](unsigned id) {
        return std::to_string(id) + ' ' + std::to_string(id) + " 1\n";
    };
    writeText("/proc/self/setgroups", "deny");
    writeText("/proc/self/uid_map", same(user));
    writeText("/proc/self/gid_map", same(group));
}

int currentNamespace()
{
    const int handle = ::open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC);
    if (handle < 0)
        fail("the network namespace cannot be named");
    return handle;
}

void setUp(int socket, ifreq request, unsigned long what, const char *name)
{
    if (::ioctl(socket, what, &request) != 0)
        fail(std::string("cannot set ") + name + " of a network device");
}

void switchOn(int socket, const char *device)
{
    ifreq request{};
    std::snprintf(request.ifr_name, sizeof request.ifr_name, "%s", device);
    request.ifr_flags = IFF_UP | IFF_RUNNING;
    setUp(socket, request, SIOCSIFFLAGS, "the state");
}

/// A new device in the namespace of the calling thread, with an address in a network of 256.
int makeDevice(const std::string &address)
{
    const int device = ::open("/dev/net/tun", O_RDWR | O_CLOEXEC | O_NONBLOCK);
    if (device < 0)
        fail("/dev/net/tun cannot be opened");
    ifreq request{};
    std::snprintf(request.ifr_name, sizeof request.ifr_name, "link0");
    request.ifr_flags = IFF_TUN | IFF_NO_PI;
    if (::ioctl(device, TUNSETIFF, &request) != 0) {
        const int problem = errno;
        ::close(device);
        errno = problem;
        fail("no TUN device can be made");
    }
    const Handle socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in place{};
    place.sin_family = AF_INET;
    ::inet_pton(AF_INET, address.c_str(), &place.sin_addr);
    std::memcpy(&request.ifr_addr, &place, sizeof place);
    setUp(socket.get(), request, SIOCSIFADDR, "the address");
    ::inet_pton(AF_INET, "255.255.255.0", &place.sin_addr);
    std::memcpy(&request.ifr_netmask, &place, sizeof place);
    setUp(socket.get(), request, SIOCSIFNETMASK, "the mask");
    request.ifr_mtu = mtu;
    setUp(socket.get(), request, SIOCSIFMTU, "the packet size");
    switchOn(socket.get(), "link0");
    switchOn(socket.get(), "lo");
    return device;
}

} // namespace

class NetworkLink::Private
{
public:
    explicit Private(const LinkConditions &conditions) : m_conditions(conditions)
    {
        m_stop.reset(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
        becomeAdministrator();
        if (::unshare(CLONE_NEWNET) != 0)
            fail("network namespaces are not permitted");
        m_camera.reset(currentNamespace());
        m_atCamera.reset(makeDevice(cameraAddress()));
        if (::unshare(CLONE_NEWNET) != 0)
            fail("network namespaces are not permitted");
        m_viewer.reset(currentNamespace());
        m_atViewer.reset(makeDevice(viewerAddress()));
        m_thread = std::thread([this] { run(); });
    }
    ~Private()
    {
        const uint64_t one = 1;
        if (::write(m_stop.get(), &one, sizeof one) == sizeof one)
            m_thread.join();
        else
            std::terminate();
    }
    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;

    void setConditions(const LinkConditions &conditions)
    {
        const std::lock_guard lock(m_mutex);
        m_conditions = conditions;
    }

    void atCamera(const std::function<void()> &work)
    {
        enter(m_camera.get());
        try {
            work();
        } catch (...) {
            enter(m_viewer.get());
            throw;
        }
        enter(m_viewer.get());
    }

private:
    struct Packet
    {
        Clock::time_point due;
        std::vector<char> bytes;
    };

    /// One direction.
    struct Way
    {
        int to = -1;
        std::deque<Packet> packets;
        Clock::time_point free; ///< when all that was sent has left
    };

    static void enter(int space)
    {
        if (::setns(space, CLONE_NEWNET) != 0)
            fail("cannot change to another network namespace");
    }

    LinkConditions conditions()
    {
        const std::lock_guard lock(m_mutex);
        return m_conditions;
    }

    void run()
    {
        Way fromCamera{.to = m_atViewer.get(), .packets = {}, .free = {}};
        Way fromViewer{.to = m_atCamera.get(), .packets = {}, .free = {}};
        for (;;) {
            std::array<pollfd, 3> waits = {{{m_stop.get(), POLLIN, 0},
                                            {m_atCamera.get(), POLLIN, 0},
                                            {m_atViewer.get(), POLLIN, 0}}};
            const timespec wait = untilNext(fromCamera, fromViewer);
            ::ppoll(waits.data(), waits.size(), &wait, nullptr);
            if (waits[0].revents != 0)
                return;
            take(m_atCamera.get(), fromCamera);
            take(m_atViewer.get(), fromViewer);
            pass(fromCamera);
            pass(fromViewer);
        }
    }

    static timespec untilNext(const Way &a, const Way &b)
    {
        Clock::time_point next = Clock::now() + std::chrono::milliseconds(500);
        for (const Way *way : {&a, &b})
            if (!way->packets.empty())
                next = std::min(next, way->packets.front().due);
        const auto left =
            std::max<std::chrono::nanoseconds>(next - Clock::now(), std::chrono::nanoseconds(0));
        return {.tv_sec = 0, .tv_nsec = static_cast<long>(left.count())};
    }

    void take(int from, Way &way)
    {
        const LinkConditions now = conditions();
        std::array<char, mtu> buffer;
        for (;;) {
            const ssize_t size = ::read(from, buffer.data(), buffer.size());
            if (size <= 0)
                return;
            const auto arrived = Clock::now();
            if (way.packets.size() >= longestQueue || m_chance(m_random) < now.loss)
                continue;
            way.free = std::max(way.free, arrived);
            if (now.bitsPerSecond > 0)
                way.free += std::chrono::nanoseconds(size * 8 * 1'000'000'000 / now.bitsPerSecond);
            const double late = static_cast<double>(now.delay.count()) +
                                m_normal(m_random) * static_cast<double>(now.jitter.count());
            Clock::time_point due =
                way.free + std::chrono::microseconds(std::lround(std::max(0.0, late) * 1000));
            if (!way.packets.empty())
                due = std::max(due, way.packets.back().due);
            way.packets.push_back({due, {buffer.data(), buffer.data() + size}});
        }
    }

    static void pass(Way &way)
    {
        const auto now = Clock::now();
        while (!way.packets.empty() && way.packets.front().due <= now) {
            const std::vector<char> &bytes = way.packets.front().bytes;
            // A device without room loses the packet, as networks do.
            [[maybe_unused]] const ssize_t size = ::write(way.to, bytes.data(), bytes.size());
            way.packets.pop_front();
        }
    }

    Handle m_stop;
    Handle m_camera; ///< the namespaces
    Handle m_viewer;
    Handle m_atCamera; ///< the devices
    Handle m_atViewer;
    std::mutex m_mutex; ///< for the next
    LinkConditions m_conditions;
    // The thread's:
    std::minstd_rand m_random{7};
    std::uniform_real_distribution<double> m_chance{0, 1};
    std::normal_distribution<double> m_normal{0, 1};
    std::thread m_thread;
};

NetworkLink::NetworkLink(const LinkConditions &conditions)
    : d(std::make_unique<Private>(conditions))
{
}

NetworkLink::~NetworkLink() = default;

void NetworkLink::setConditions(const LinkConditions &conditions)
{
    d->setConditions(conditions);
}

void NetworkLink::atCamera(const std::function<void()> &work)
{
    d->atCamera(work);
}

} // namespace zelvaro::test
