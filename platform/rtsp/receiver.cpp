#include "platform/rtsp/receiver.h"

#include "platform/base/destroy_later.h"
#include "platform/rtsp/reception.h"

#include <utility>

namespace rtsp {

Receiver::Receiver(Client &client, StreamRequest request)
    : m_client(client)
    , m_request(std::move(request))
{
}

Receiver::~Receiver()
{
    close();
}

void Receiver::start()
{
    close();
    d = std::make_shared<Private>(m_client, m_request);
    d->start();
}

void Receiver::start(OpenSession session)
{
    close();
    d = std::make_shared<Private>(m_client, m_request);
    d->start(std::move(session));
}

void Receiver::close()
{
    if (!d)
        return;
    d->close();
    // Not now: it may be calling the client.
    base::destroyLater(std::move(d));
}

bool Receiver::isUdp() const
{
    return d && d->isUdp();
}

const char *Receiver::transportName() const
{
    return d ? d->transportName() : "TCP";
}

MediaStatistics Receiver::videoStatistics() const
{
    return d ? d->videoStatistics() : MediaStatistics();
}

} // namespace rtsp
