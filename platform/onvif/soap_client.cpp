#include "platform/onvif/soap_client.h"

#include "platform/onvif/http_exchange.h"
#include "platform/onvif/soap_message.h"

#include <cstdlib>
#include <optional>

namespace onvif {

namespace {

constexpr const char *clockAction = "http://www.onvif.org/ver10/device/wsdl/GetSystemDateAndTime";
constexpr const char *clockBody = "<tds:GetSystemDateAndTime/>";
// A device whose clock was changed refuses old dates; smaller steps are no reason to sign again.
constexpr std::int64_t clockStep = 2;

enum class Signing
{
    Http,  ///< digest or basic, as the device requires
    Token, ///< WS-Security UsernameToken
};

SoapReply readReply(const HttpAnswer &answer)
{
    SoapReply reply;
    if (answer.status == 0) {
        reply.text = "no answer";
        return reply;
    }
    reply.status = SoapStatus::Fault;
    reply.text = "HTTP status " + std::to_string(answer.status);
    std::optional<XmlMessage> message;
    if (!answer.isTooLarge)
        message = XmlMessage::parse(answer.body);
    const std::optional<SoapFault> fault = message ? faultIn(*message) : std::nullopt;
    if (fault)
        reply.text += ", " + fault->text;
    if (answer.status == 401 || answer.status == 403 || (fault && fault->isRefusal)) {
        reply.status = SoapStatus::Refused;
    } else if (!fault && message && answer.status / 100 == 2) {
        reply.status = SoapStatus::Ok;
        reply.message = std::make_shared<const XmlMessage>(std::move(*message));
    }
    return reply;
}

} // namespace

struct SoapClient::Session
{
    explicit Session(GMainContext *mainContext)
        : context(g_main_context_ref(mainContext))
        , http(newHttpSession(mainContext))
    {
    }

    GMainContextPtr context;
    GObjectPtr<SoupSession> http;
    std::string deviceService;
    Credentials credentials;
    unsigned milliseconds = 5000;
    Signing signing = Signing::Http;
    std::optional<std::int64_t> clockOffset; ///< seconds the device's clock is ahead
};

class SoapClient::Call : public Request
{
public:
    Call(std::shared_ptr<Session> session, std::string service, std::string action,
         std::string body, Done done)
        : m_session(std::move(session))
        , m_service(std::move(service))
        , m_action(std::move(action))
        , m_body(std::move(body))
        , m_done(std::move(done))
    {
        if (m_session->signing == Signing::Http)
            sendForHttpSigning();
        else if (m_session->clockOffset)
            sendSigned();
        else
            readClock();
    }

private:
    void post(const std::string &service, const std::string &action, const std::string &envelope,
              const Credentials &credentials, std::function<void(HttpAnswer)> answered)
    {
        HttpPost post;
        post.address = service;
        post.contentType = "application/soap+xml; charset=utf-8; action=\"" + action + '"';
        post.body = envelope;
        post.credentials = credentials;
        post.milliseconds = m_session->milliseconds;
        m_exchange = postHttp(m_session->context.get(), m_session->http.get(), std::move(post),
                              std::move(answered));
    }

    void sendForHttpSigning()
    {
        post(
            m_service, m_action, buildEnvelope(m_body), m_session->credentials,
            [this](const HttpAnswer &answer) {
                const SoapReply reply = readReply(answer);
                const bool canUseToken =
                    !answer.wasChallenged && !m_session->credentials.user.empty();
                if (reply.status == SoapStatus::Refused && canUseToken)
                    readClock();
                else
                    finish(reply);
            });
    }

    void readClock()
    {
        post(
            m_session->deviceService, clockAction, buildEnvelope(clockBody), {},
            [this](const HttpAnswer &answer) {
                const SoapReply reply = readReply(answer);
                if (reply.status == SoapStatus::NoAnswer) {
                    finish(reply);
                    return;
                }
                std::optional<std::int64_t> time;
                if (reply.message)
                    time = parseSystemTime(*reply.message);
                const std::int64_t now = g_get_real_time() / G_USEC_PER_SEC;
                const std::int64_t offset = time ? *time - now : 0;
                gotClock(offset);
            });
    }

    void gotClock(std::int64_t offset)
    {
        const bool isSame =
            m_session->clockOffset && std::abs(*m_session->clockOffset - offset) <= clockStep;
        m_session->clockOffset = offset;
        if (m_refusal && isSame)
            finish(*m_refusal);
        else
            sendSigned();
    }

    void sendSigned()
    {
        const TokenStamp stamp = TokenStamp::now(m_session->clockOffset.value_or(0));
        post(m_service, m_action, buildSignedEnvelope(m_body, m_session->credentials, stamp), {},
             [this](const HttpAnswer &answer) {
                 const SoapReply reply = readReply(answer);
                 const bool wasGood = m_session->signing == Signing::Token;
                 if (reply.status == SoapStatus::Ok)
                     m_session->signing = Signing::Token;
                 if (reply.status == SoapStatus::Refused && wasGood && !m_refusal) {
                     // It worked before: perhaps the device's clock was set meanwhile.
                     m_refusal = reply;
                     readClock();
                 } else {
                     finish(reply);
                 }
             });
    }

    void finish(const SoapReply &reply)
    {
        // The receiver may destroy this call.
        const Done done = std::move(m_done);
        const SoapReply copy = reply;
        done(copy);
    }

    std::shared_ptr<Session> m_session;
    std::string m_service;
    std::string m_action;
    std::string m_body;
    Done m_done;
    std::optional<SoapReply> m_refusal; ///< of a token that used to be accepted
    RequestPtr m_exchange;
};

SoapClient::SoapClient(GMainContext *context, std::string deviceService, Credentials credentials)
    : m_session(std::make_shared<Session>(context))
{
    m_session->deviceService = std::move(deviceService);
    m_session->credentials = std::move(credentials);
}

SoapClient::~SoapClient() = default;

const std::string &SoapClient::deviceService() const
{
    return m_session->deviceService;
}

void SoapClient::setTimeout(unsigned milliseconds)
{
    m_session->milliseconds = milliseconds;
}

RequestPtr SoapClient::call(const std::string &service, const std::string &action,
                            const std::string &body, Done done)
{
    return std::make_unique<Call>(m_session, service, action, body, std::move(done));
}

} // namespace onvif
