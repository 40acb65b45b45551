#include "platform/onvif/login_memory.h"

#include "platform/base/text.h"

namespace onvif {

LoginMemory &LoginMemory::instance()
{
    static LoginMemory memory;
    return memory;
}

void LoginMemory::sawSecretLogin(const std::string &host)
{
    const std::lock_guard lock(m_mutex);
    m_hosts.insert(base::lowerAscii(host));
}

bool LoginMemory::hasSecretLogin(const std::string &host) const
{
    const std::lock_guard lock(m_mutex);
    return m_hosts.contains(base::lowerAscii(host));
}

} // namespace onvif
