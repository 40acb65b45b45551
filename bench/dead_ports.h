#pragma once

#include <vector>

namespace bench {

/// Ports on 127.0.0.1 behind which there is no camera: half refuse each connection, half accept
/// it and never say a word. Throws std::runtime_error when there are not enough.
class DeadPorts
{
public:
    explicit DeadPorts(int count);
    ~DeadPorts();
    DeadPorts(const DeadPorts &) = delete;
    DeadPorts &operator=(const DeadPorts &) = delete;

    const std::vector<int> &ports() const { return m_ports; }

private:
    std::vector<int> m_sockets;
    std::vector<int> m_ports;
};

} // namespace bench
