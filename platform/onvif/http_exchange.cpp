#include "platform/onvif/http_exchange.h"

#include "platform/base/certificate_key.h"
#include "platform/base/known_keys.h"
#include "platform/base/timer.h"
#include "platform/onvif/log.h"
#include "platform/onvif/net_address.h"

#include <utility>

namespace onvif {

namespace {

constexpr gsize readSize = 16 * 1024;
constexpr int connectionsPerDevice = 2;

// Lives as long as an operation of GIO may come back to it: each holds a reference.
class Exchange : public std::enable_shared_from_this<Exchange>
{
public:
    Exchange(GMainContext *context, SoupSession *session, HttpRequest request,
             std::function<void(HttpAnswer)> done)
        : m_context(g_main_context_ref(context))
        , m_session(base::shareObject(session))
        , m_request(std::move(request))
        , m_done(std::move(done))
    {
        makeMessage();
    }

    ~Exchange() { disconnect(); }

    void start()
    {
        const unsigned limit = m_message ? m_request.milliseconds : 0;
        m_timeout.start(
            std::chrono::milliseconds(limit), [this] { fail(); }, m_context.get());
        if (m_message)
            send();
    }

    void cancel()
    {
        m_done = nullptr;
        m_timeout.stop();
        g_cancellable_cancel(m_cancellable.get());
    }

private:
    using Self = std::shared_ptr<Exchange>;

    gpointer reference() { return new Self(shared_from_this()); }

    static Self takeReference(gpointer data)
    {
        const std::unique_ptr<Self> reference(static_cast<Self *>(data));
        return *reference;
    }

    void makeMessage()
    {
        disconnect();
        m_message.reset();
        if (!parseHttpAddress(m_request.address))
            return;
        m_message.reset(soup_message_new(m_request.isGet ? SOUP_METHOD_GET : SOUP_METHOD_POST,
                                         m_request.address.c_str()));
        if (!m_message)
            return;
        setBody(m_message.get(), this);
        // libsoup opens a new connection for each POST that is not marked as idempotent.
        soup_message_add_flags(m_message.get(),
                               static_cast<SoupMessageFlags>(
                                   SOUP_MESSAGE_NO_REDIRECT | SOUP_MESSAGE_COLLECT_METRICS |
                                   (m_request.mayReuseConnection ? SOUP_MESSAGE_IDEMPOTENT
                                                                 : SOUP_MESSAGE_NEW_CONNECTION)));
        if (!m_request.authorization.empty()) {
            soup_message_headers_replace(soup_message_get_request_headers(m_message.get()),
                                         "Authorization", m_request.authorization.c_str());
        }
        // The body is used up when libsoup sends the message a second time.
        g_signal_connect(m_message.get(), "restarted", G_CALLBACK(setBody), this);
        g_signal_connect(m_message.get(), "accept-certificate", G_CALLBACK(acceptCertificate),
                         this);
    }

    void disconnect()
    {
        if (m_message)
            g_signal_handlers_disconnect_by_data(m_message.get(), this);
    }

    void send()
    {
        soup_session_send_async(m_session.get(), m_message.get(), G_PRIORITY_DEFAULT,
                                m_cancellable.get(), sent, reference());
    }

    static void setBody(SoupMessage *message, gpointer data)
    {
        const HttpRequest &request = static_cast<Exchange *>(data)->m_request;
        if (request.isGet)
            return;
        GBytes *body = g_bytes_new(request.body.data(), request.body.size());
        soup_message_set_request_body_from_bytes(message, request.contentType.c_str(), body);
        g_bytes_unref(body);
    }

    static gboolean acceptCertificate(SoupMessage *, GTlsCertificate *certificate,
                                      GTlsCertificateFlags, gpointer self)
    {
        const HttpRequest &request = static_cast<Exchange *>(self)->m_request;
        const HttpAddress address = parseHttpAddress(request.address).value_or(HttpAddress());
        const base::Endpoint service = {
            .host = address.host, .port = static_cast<std::uint16_t>(address.port), .tls = true};
        const bool accepts =
            base::KnownKeys::instance().check(service, base::publicKeyDigest(certificate)) !=
            base::KnownKeys::Verdict::Changed;
        if (!accepts)
            g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: the key has changed", request.address.c_str());
        return accepts;
    }

    static void sent(GObject *session, GAsyncResult *result, gpointer data)
    {
        const Self self = takeReference(data);
        GError *error = nullptr;
        self->m_stream.reset(soup_session_send_finish(SOUP_SESSION(session), result, &error));
        const base::GErrorPtr failure(error);
        if (self->m_stream)
            self->read();
        else if (self->wasClosedBefore())
            self->sendAgain();
        else
            self->fail();
    }

    // Devices close idle connections; the next request on one then gets a connection error.
    [[nodiscard]] bool wasClosedBefore() const
    {
        SoupMessageMetrics *metrics = soup_message_get_metrics(m_message.get());
        const bool wasReused = metrics && soup_message_metrics_get_connect_start(metrics) == 0 &&
                               soup_message_metrics_get_request_start(metrics) != 0;
        return m_request.mayReuseConnection && wasReused &&
               !g_cancellable_is_cancelled(m_cancellable.get());
    }

    void sendAgain()
    {
        m_request.mayReuseConnection = false;
        makeMessage();
        send();
    }

    void read()
    {
        g_input_stream_read_bytes_async(m_stream.get(), readSize, G_PRIORITY_DEFAULT,
                                        m_cancellable.get(), received, reference());
    }

    static void received(GObject *stream, GAsyncResult *result, gpointer data)
    {
        const Self self = takeReference(data);
        GError *error = nullptr;
        GBytes *bytes = g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, &error);
        const base::GErrorPtr failure(error);
        if (!bytes) {
            self->fail();
            return;
        }
        gsize length = 0;
        const auto *text = static_cast<const char *>(g_bytes_get_data(bytes, &length));
        self->m_answer.body.append(text ? text : "", length);
        g_bytes_unref(bytes);
        self->continueAfter(length);
    }

    void continueAfter(gsize length)
    {
        m_answer.isTooLarge = m_answer.body.size() > m_request.maxBytes;
        if (length > 0 && !m_answer.isTooLarge) {
            read();
            return;
        }
        m_answer.status = soup_message_get_status(m_message.get());
        readHeaders();
        finish();
    }

    void readHeaders()
    {
        SoupMessageHeaders *headers = soup_message_get_response_headers(m_message.get());
        SoupMessageHeadersIter header;
        soup_message_headers_iter_init(&header, headers);
        const char *name = nullptr;
        const char *value = nullptr;
        while (soup_message_headers_iter_next(&header, &name, &value))
            if (g_ascii_strcasecmp(name, "WWW-Authenticate") == 0)
                m_answer.challenges.emplace_back(value);
        const char *date = soup_message_headers_get_one(headers, "Date");
        if (GDateTime *moment = date ? soup_date_time_new_from_http_string(date) : nullptr) {
            m_answer.date = g_date_time_to_unix(moment);
            g_date_time_unref(moment);
        }
    }

    void fail()
    {
        m_answer = {};
        finish();
    }

    void finish()
    {
        const std::function<void(HttpAnswer)> done = std::exchange(m_done, nullptr);
        cancel();
        if (done)
            done(std::move(m_answer));
    }

    base::GMainContextPtr m_context;
    base::GObjectPtr<SoupSession> m_session;
    HttpRequest m_request;
    std::function<void(HttpAnswer)> m_done;
    base::GObjectPtr<GCancellable> m_cancellable{g_cancellable_new()};
    base::GObjectPtr<SoupMessage> m_message;
    base::GObjectPtr<GInputStream> m_stream;
    HttpAnswer m_answer;
    base::Timer m_timeout;
};

class ExchangeRequest : public Request
{
public:
    explicit ExchangeRequest(std::shared_ptr<Exchange> exchange) : m_exchange(std::move(exchange))
    {
    }
    ~ExchangeRequest() override { m_exchange->cancel(); }

private:
    std::shared_ptr<Exchange> m_exchange;
};

} // namespace

base::GObjectPtr<SoupSession> newHttpSession(GMainContext *context)
{
    g_warn_if_fail(base::isThreadDefault(context));
    base::GObjectPtr<SoupSession> session(soup_session_new_with_options(
        "max-conns-per-host", connectionsPerDevice, "timeout", 0, "idle-timeout", 15, nullptr));
    soup_session_set_proxy_resolver(session.get(), nullptr);
    // Without authorities each certificate is to be decided on here.
    soup_session_set_tls_database(session.get(), nullptr);
    soup_session_remove_feature_by_type(session.get(), SOUP_TYPE_CONTENT_DECODER);
    // libsoup would answer any Basic challenge in clear, and knows MD5 digests only.
    soup_session_remove_feature_by_type(session.get(), SOUP_TYPE_AUTH_MANAGER);
    return session;
}

RequestPtr sendHttp(GMainContext *context, SoupSession *session, HttpRequest request,
                    std::function<void(HttpAnswer)> done)
{
    auto exchange =
        std::make_shared<Exchange>(context, session, std::move(request), std::move(done));
    exchange->start();
    return std::make_unique<ExchangeRequest>(std::move(exchange));
}

} // namespace onvif
