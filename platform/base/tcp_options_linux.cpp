#include "platform/base/tcp_options.h"

#include <netinet/in.h>
#include <netinet/tcp.h>

namespace base {

void sendWithoutDelay(GSocket *socket)
{
    g_socket_set_option(socket, IPPROTO_TCP, TCP_NODELAY, 1, nullptr);
}

void acknowledgeNow(GSocket *socket)
{
    g_socket_set_option(socket, IPPROTO_TCP, TCP_QUICKACK, 1, nullptr);
}

} // namespace base
