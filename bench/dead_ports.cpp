#include "bench/dead_ports.h"

#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace bench {

DeadPorts::DeadPorts(int count)
{
    for (int i = 0; i < count; ++i) {
        const int handle = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        m_sockets.push_back(handle);
        sockaddr_in name{};
        socklen_t length = sizeof name;
        name.sin_family = AF_INET;
        name.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto *address = reinterpret_cast<sockaddr *>(&name);
        // A port that is bound without listening refuses; one that listens is accepted by the
        // system.
        if (bind(handle, address, length) != 0 || (i % 2 == 1 && listen(handle, SOMAXCONN) != 0) ||
            getsockname(handle, address, &length) != 0)
            throw std::runtime_error("no dead port");
        m_ports.push_back(ntohs(name.sin_port));
    }
}

DeadPorts::~DeadPorts()
{
    for (const int handle : m_sockets)
        close(handle);
}

} // namespace bench
