#pragma once

#include <mutex>
#include <set>
#include <string>

namespace onvif {

/// Which devices have ever offered a login that keeps the password secret (digest, token). Such a
/// device never gets the password in clear, whatever it offers later. By host, for as long as the
/// process runs. Safe from any thread.
class LoginMemory
{
public:
    static LoginMemory &instance();

    void sawSecretLogin(const std::string &host);
    [[nodiscard]] bool hasSecretLogin(const std::string &host) const;

private:
    mutable std::mutex m_mutex; ///< protects m_hosts
    std::set<std::string> m_hosts;
};

} // namespace onvif
