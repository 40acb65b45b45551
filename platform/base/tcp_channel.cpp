#include "platform/base/tcp_channel.h"

#include "platform/base/certificate_key.h"
#include "platform/base/known_keys.h"
#include "platform/base/tcp_options.h"
#include "platform/base/timer.h"

#include <vector>

namespace base {

namespace {

constexpr size_t readSize = size_t{256} * 1024;
constexpr size_t maxOutgoing = size_t{256} * 1024;
// TLS hands out one record of at most 16 KB at a time. After so many others get
// their turn.
constexpr int maxReads = 16;

/// One for all channels of a thread: they are read one after the other.
std::vector<char> &readBuffer()
{
    thread_local std::vector<char> buffer(readSize);
    return buffer;
}

/// A source of the loop thread, removed with this object.
class Watch
{
public:
    Watch() = default;
    ~Watch() { stop(); }
    Watch(const Watch &) = delete;
    Watch &operator=(const Watch &) = delete;

    void start(GSource *source, GPollableSourceFunc ready, gpointer data)
    {
        stop();
        m_source = source;
        g_source_set_callback(source, G_SOURCE_FUNC(ready), data, nullptr);
        g_source_attach(source, g_main_context_get_thread_default());
    }
    void stop()
    {
        if (!m_source)
            return;
        g_source_destroy(m_source);
        g_source_unref(m_source);
        m_source = nullptr;
    }
    bool isActive() const { return m_source != nullptr; }

private:
    GSource *m_source = nullptr;
};

bool wouldBlock(const GErrorPtr &error)
{
    return g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_WOULD_BLOCK);
}

/// Why a connection was not made.
ChannelEnd reasonOf(const GError &error)
{
    if (g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED))
        return ChannelEnd::Rejected;
    if (error.domain == G_RESOLVER_ERROR)
        return ChannelEnd::NoSuchHost;
    return error.domain == G_TLS_ERROR ? ChannelEnd::TlsFailed : ChannelEnd::Unreachable;
}

} // namespace

/// Shared by the channel and by the connecting that GIO has under way for it,
/// which outlives the channel by one turn of the loop.
struct TcpChannel::Link : std::enable_shared_from_this<Link>
{
    explicit Link(Handlers toCall) : handlers(std::move(toCall)), cancel(g_cancellable_new()) {}
    ~Link() { abandon(); }

    void connect(const Endpoint &endpoint, std::chrono::milliseconds timeLimit);
    static void clientEvent(GSocketClient *, GSocketClientEvent event, GSocketConnectable *,
                            GIOStream *stream, gpointer link);
    static gboolean acceptCertificate(GTlsConnection *, GTlsCertificate *certificate,
                                      GTlsCertificateFlags, gpointer link);
    void connected(GSocketConnection *made, const GError *error);
    void watchInput();
    void read();
    void write();
    void end(ChannelEnd reason);
    void abandon();

    Handlers handlers;
    GObjectPtr<GCancellable> cancel;
    GObjectPtr<GSocketConnection> connection;
    Timer connectLimit;
    Watch readable;
    Watch writable;
    std::string outgoing; ///< what the system did not take yet
    Endpoint service;
    bool keyChanged = false;
    bool closed = false;
};

void TcpChannel::Link::connect(const Endpoint &endpoint, std::chrono::milliseconds timeLimit)
{
    const GObjectPtr<GSocketClient> client(g_socket_client_new());
    service = endpoint;
    // Cameras are on this network: a proxy of the desktop's settings is never on
    // the way.
    g_socket_client_set_enable_proxy(client.get(), FALSE);
    g_socket_client_set_tls(client.get(), endpoint.tls);
    g_signal_connect(client.get(), "event", G_CALLBACK(clientEvent), this);
    const GObjectPtr<GSocketConnectable> address(
        g_network_address_new(endpoint.host.c_str(), endpoint.port));
    connectLimit.start(timeLimit, [this] { end(ChannelEnd::Unreachable); });
    g_socket_client_connect_async(
        client.get(), address.get(), cancel.get(),
        [](GObject *source, GAsyncResult *result, gpointer data) {
            const std::unique_ptr<std::shared_ptr<Link>> link(
                static_cast<std::shared_ptr<Link> *>(data));
            GError *error = nullptr;
            GSocketConnection *made =
                g_socket_client_connect_finish(G_SOCKET_CLIENT(source), result, &error);
            const GErrorPtr guard(error);
            (*link)->connected(made, error);
        },
        new std::shared_ptr<Link>(shared_from_this()));
}

/// While it connects, for which this object is kept.
void TcpChannel::Link::clientEvent(GSocketClient *, GSocketClientEvent event, GSocketConnectable *,
                                   GIOStream *stream, gpointer link)
{
    if (event != G_SOCKET_CLIENT_TLS_HANDSHAKING)
        return;
    auto *tls = G_TLS_CONNECTION(stream);
    g_tls_connection_set_require_close_notify(tls, FALSE);
    // Without authorities each certificate is to be decided on here.
    g_tls_connection_set_database(tls, nullptr);
    const std::weak_ptr<Link> self = static_cast<Link *>(link)->weak_from_this();
    g_signal_connect_data(
        stream, "accept-certificate", G_CALLBACK(acceptCertificate), new std::weak_ptr(self),
        [](gpointer data, GClosure *) {
            std::default_delete<std::weak_ptr<Link>>()(static_cast<std::weak_ptr<Link> *>(data));
        },
        G_CONNECT_DEFAULT);
}

gboolean TcpChannel::Link::acceptCertificate(GTlsConnection *, GTlsCertificate *certificate,
                                             GTlsCertificateFlags, gpointer link)
{
    const std::shared_ptr<Link> self = static_cast<std::weak_ptr<Link> *>(link)->lock();
    if (!self)
        return FALSE;
    const KnownKeys::Verdict verdict =
        KnownKeys::instance().check(self->service, publicKeyDigest(certificate));
    self->keyChanged = verdict == KnownKeys::Verdict::Changed;
    return !self->keyChanged;
}

void TcpChannel::Link::connected(GSocketConnection *made, const GError *error)
{
    connection.reset(made);
    if (closed) {
        abandon();
        return;
    }
    connectLimit.stop();
    if (!made) {
        end(keyChanged ? ChannelEnd::KeyChanged : reasonOf(*error));
        return;
    }
    sendWithoutDelay(g_socket_connection_get_socket(made));
    watchInput();
    // Copies, here and below, because a handler may set others.
    if (const auto opened = handlers.opened)
        opened();
}

void TcpChannel::Link::watchInput()
{
    auto *input =
        G_POLLABLE_INPUT_STREAM(g_io_stream_get_input_stream(G_IO_STREAM(connection.get())));
    const auto ready = +[](GObject *, gpointer data) -> gboolean {
        const std::shared_ptr<Link> link = static_cast<Link *>(data)->shared_from_this();
        link->read();
        return link->closed ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
    };
    readable.start(g_pollable_input_stream_create_source(input, nullptr), ready, this);
}

void TcpChannel::Link::read()
{
    std::vector<char> &buffer = readBuffer();
    for (int count = 0; count < maxReads && !closed; ++count) {
        auto *input =
            G_POLLABLE_INPUT_STREAM(g_io_stream_get_input_stream(G_IO_STREAM(connection.get())));
        GError *error = nullptr;
        const gssize size = g_pollable_input_stream_read_nonblocking(
            input, buffer.data(), buffer.size(), nullptr, &error);
        const GErrorPtr guard(error);
        if (size < 0 && wouldBlock(guard))
            return;
        if (size <= 0) {
            end(ChannelEnd::Closed);
            return;
        }
        acknowledgeNow(g_socket_connection_get_socket(connection.get()));
        const auto received = handlers.received;
        received({buffer.data(), static_cast<size_t>(size)});
        if (!service.tls && static_cast<size_t>(size) < buffer.size())
            return;
    }
}

void TcpChannel::Link::write()
{
    auto *output =
        G_POLLABLE_OUTPUT_STREAM(g_io_stream_get_output_stream(G_IO_STREAM(connection.get())));
    while (!outgoing.empty()) {
        GError *error = nullptr;
        const gssize size = g_pollable_output_stream_write_nonblocking(
            output, outgoing.data(), outgoing.size(), nullptr, &error);
        const GErrorPtr guard(error);
        if (size < 0 && wouldBlock(guard))
            break;
        if (size < 0) {
            // The failure shows at the reading side as well, after the last words of
            // the camera.
            outgoing.clear();
            break;
        }
        outgoing.erase(0, static_cast<size_t>(size));
    }
    if (outgoing.empty()) {
        writable.stop();
    } else if (!writable.isActive()) {
        const auto ready = +[](GObject *, gpointer data) -> gboolean {
            static_cast<Link *>(data)->write();
            return G_SOURCE_CONTINUE;
        };
        writable.start(g_pollable_output_stream_create_source(output, nullptr), ready, this);
    }
}

void TcpChannel::Link::end(ChannelEnd reason)
{
    const std::shared_ptr<Link> alive = shared_from_this();
    abandon();
    const auto ended = handlers.ended;
    ended(reason);
}

void TcpChannel::Link::abandon()
{
    closed = true;
    connectLimit.stop();
    readable.stop();
    writable.stop();
    g_cancellable_cancel(cancel.get());
    // The socket first: a TLS connection that goes otherwise waits until its
    // farewell is sent.
    if (connection)
        g_socket_close(g_socket_connection_get_socket(connection.get()), nullptr);
    connection.reset();
}

TcpChannel &TcpChannel::operator=(TcpChannel &&other) noexcept
{
    if (this != &other) {
        close();
        m_link = std::move(other.m_link);
    }
    return *this;
}

void TcpChannel::open(const Endpoint &endpoint, std::chrono::milliseconds timeLimit,
                      Handlers handlers)
{
    close();
    m_link = std::make_shared<Link>(std::move(handlers));
    m_link->connect(endpoint, timeLimit);
}

void TcpChannel::setHandlers(Handlers handlers)
{
    if (m_link)
        m_link->handlers = std::move(handlers);
}

void TcpChannel::send(std::string_view data)
{
    if (!isOpen())
        return;
    const bool waits = !m_link->outgoing.empty();
    m_link->outgoing += data;
    if (!waits)
        m_link->write();
    if (m_link->outgoing.size() > maxOutgoing) {
        // Ends in the next turn of the loop, as an end of the camera's.
        m_link->outgoing.clear();
        g_socket_shutdown(g_socket_connection_get_socket(m_link->connection.get()), TRUE, TRUE,
                          nullptr);
    }
}

void TcpChannel::close()
{
    if (m_link && !m_link->closed)
        m_link->abandon();
    m_link.reset();
}

bool TcpChannel::isOpen() const
{
    return m_link && !m_link->closed && m_link->connection;
}

GObjectPtr<GInetSocketAddress> TcpChannel::remoteAddress() const
{
    if (!isOpen())
        return nullptr;
    GObjectPtr<GSocketAddress> address(
        g_socket_connection_get_remote_address(m_link->connection.get(), nullptr));
    if (!address || !G_IS_INET_SOCKET_ADDRESS(address.get()))
        return nullptr;
    return GObjectPtr<GInetSocketAddress>(G_INET_SOCKET_ADDRESS(address.release()));
}

} // namespace base
