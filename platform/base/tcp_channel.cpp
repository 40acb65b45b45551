#include "platform/base/tcp_channel.h"

#include "platform/base/glib_ptr.h"
#include "platform/base/timer.h"

#include <gio/gio.h>

#include <array>

namespace base {

/// Shared by the channel and by the operations that GIO has under way for it, which outlive the
/// channel by one turn of the loop.
struct TcpChannel::Link : std::enable_shared_from_this<Link>
{
    explicit Link(Handlers toCall) : handlers(std::move(toCall)), cancel(g_cancellable_new()) {}

    void connect(const Endpoint &endpoint, std::chrono::milliseconds timeLimit);
    void connected(GSocketConnection *made, const GError *error);
    void read();
    void write();
    void end(ChannelEnd reason);
    void abandon();

    /// The user data of an operation: keeps the link alive until its callback ran.
    gpointer hold() { return new std::shared_ptr<Link>(shared_from_this()); }
    static std::shared_ptr<Link> release(gpointer data)
    {
        const std::unique_ptr<std::shared_ptr<Link>> held(
            static_cast<std::shared_ptr<Link> *>(data));
        return *held;
    }

    Handlers handlers;
    GObjectPtr<GCancellable> cancel;
    GObjectPtr<GSocketConnection> connection;
    Timer connectLimit;
    std::array<char, 4096> buffer;
    std::string outgoing; ///< not yet handed to GIO
    std::string writing;  ///< what GIO is writing; must not move meanwhile
    bool closed = false;
};

namespace {

void acceptAnyCertificate(GSocketClient *, GSocketClientEvent event, GSocketConnectable *,
                          GIOStream *stream, gpointer)
{
    if (event != G_SOCKET_CLIENT_TLS_HANDSHAKING)
        return;
    g_tls_connection_set_require_close_notify(G_TLS_CONNECTION(stream), FALSE);
    const auto accept = +[](GTlsConnection *, GTlsCertificate *, GTlsCertificateFlags,
                            gpointer) -> gboolean { return TRUE; };
    g_signal_connect(stream, "accept-certificate", G_CALLBACK(accept), nullptr);
}

} // namespace

void TcpChannel::Link::connect(const Endpoint &endpoint, std::chrono::milliseconds timeLimit)
{
    const GObjectPtr<GSocketClient> client(g_socket_client_new());
    // Cameras are on this network: a proxy of the desktop's settings is never on the way.
    g_socket_client_set_enable_proxy(client.get(), FALSE);
    g_socket_client_set_tls(client.get(), endpoint.tls);
    g_signal_connect(client.get(), "event", G_CALLBACK(acceptAnyCertificate), nullptr);
    const GObjectPtr<GSocketConnectable> address(
        g_network_address_new(endpoint.host.c_str(), endpoint.port));
    connectLimit.start(timeLimit, [this] { end(ChannelEnd::Unreachable); });
    g_socket_client_connect_async(
        client.get(), address.get(), cancel.get(),
        [](GObject *source, GAsyncResult *result, gpointer data) {
            const std::shared_ptr<Link> link = release(data);
            GError *error = nullptr;
            GSocketConnection *made =
                g_socket_client_connect_finish(G_SOCKET_CLIENT(source), result, &error);
            const GErrorPtr guard(error);
            link->connected(made, error);
        },
        hold());
}

void TcpChannel::Link::connected(GSocketConnection *made, const GError *error)
{
    connection.reset(made);
    if (closed) {
        connection.reset();
        return;
    }
    connectLimit.stop();
    if (!made) {
        const bool rejected = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CONNECTION_REFUSED);
        end(rejected ? ChannelEnd::Rejected : ChannelEnd::Unreachable);
        return;
    }
    read();
    if (handlers.opened)
        handlers.opened();
}

void TcpChannel::Link::read()
{
    g_input_stream_read_async(
        g_io_stream_get_input_stream(G_IO_STREAM(connection.get())), buffer.data(), buffer.size(),
        G_PRIORITY_DEFAULT, cancel.get(),
        [](GObject *source, GAsyncResult *result, gpointer data) {
            const std::shared_ptr<Link> link = release(data);
            const gssize size = g_input_stream_read_finish(G_INPUT_STREAM(source), result, nullptr);
            if (link->closed)
                return;
            if (size <= 0) {
                link->end(ChannelEnd::Closed);
                return;
            }
            link->handlers.received({link->buffer.data(), static_cast<size_t>(size)});
            if (!link->closed)
                link->read();
        },
        hold());
}

void TcpChannel::Link::write()
{
    if (!writing.empty() || outgoing.empty())
        return;
    writing.swap(outgoing);
    g_output_stream_write_all_async(
        g_io_stream_get_output_stream(G_IO_STREAM(connection.get())), writing.data(),
        writing.size(), G_PRIORITY_DEFAULT, cancel.get(),
        [](GObject *source, GAsyncResult *result, gpointer data) {
            const std::shared_ptr<Link> link = release(data);
            // A failure shows at the reading side as well, after the last words of the camera.
            const bool sent =
                g_output_stream_write_all_finish(G_OUTPUT_STREAM(source), result, nullptr, nullptr);
            link->writing.clear();
            if (sent && !link->closed)
                link->write();
        },
        hold());
}

void TcpChannel::Link::end(ChannelEnd reason)
{
    abandon();
    handlers.ended(reason);
}

void TcpChannel::Link::abandon()
{
    closed = true;
    connectLimit.stop();
    g_cancellable_cancel(cancel.get());
    // Operations under way hold the streams until their callbacks, in the next turn of the loop.
    connection.reset();
}

void TcpChannel::open(const Endpoint &endpoint, std::chrono::milliseconds timeLimit,
                      Handlers handlers)
{
    close();
    m_link = std::make_shared<Link>(std::move(handlers));
    m_link->connect(endpoint, timeLimit);
}

void TcpChannel::send(std::string data)
{
    if (!isOpen())
        return;
    m_link->outgoing += data;
    m_link->write();
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

} // namespace base
