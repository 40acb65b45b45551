#include "platform/rtsp/receiver.h"

#include "platform/rtsp/reception.h"

#include <utility>

namespace rtsp {

namespace {

/// In a later turn of the loop.
void destroyLater(std::shared_ptr<void> object)
{
    GSource *source = g_timeout_source_new(0);
    g_source_set_callback(
        source, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; },
        new std::shared_ptr<void>(std::move(object)),
        [](gpointer held) {
            std::default_delete<std::shared_ptr<void>>()(
                static_cast<std::shared_ptr<void> *>(held));
        });
    g_source_attach(source, g_main_context_get_thread_default());
    g_source_unref(source);
}

} // namespace

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
    destroyLater(std::move(d));
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
