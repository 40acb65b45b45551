#include "platform/onvif/login_memory.h"

#include "platform/onvif/text.h"

namespace onvif {

LoginMemory &LoginMemory::instance()
{
    static LoginMemory memory;
    return memory;
}

void LoginMemory::sawSecretLogin(const std::string &host)
{
    const std::lock_guard lock(m_mutex);
    m_hosts.insert(lowerAscii(host));
}

bool LoginMemory::hasSecretLogin(const std::string &host) const
{
    const std::lock_guard lock(m_mutex);
    return m_hosts.contains(lowerAscii(host));
}

} // namespace onvif
