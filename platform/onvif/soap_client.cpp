#include "platform/onvif/soap_client.h"

#include "platform/base/http_login.h"
#include "platform/onvif/http_exchange.h"
#include "platform/onvif/log.h"
#include "platform/onvif/login_memory.h"
#include "platform/onvif/net_address.h"
#include "platform/onvif/soap_message.h"

#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

namespace onvif {

namespace {

// A device whose clock was changed refuses old dates; smaller steps are no reason to sign again.
constexpr std::int64_t clockStep = 2;
// Some devices lock an account after a few wrong answers.
constexpr int maxTokens = 2;
constexpr const char *limitedRequest = "ONVIF";

enum class Signing
{
    Http,  ///< as the device requires
    Token, ///< WS-Security UsernameToken
};

struct ReadReply
{
    SoapReply reply;
    bool isBareRefusal = false; ///< an HTTP error that does not say what is wrong
};

ReadReply readReply(const HttpAnswer &answer, const std::string &action)
{
    ReadReply read;
    if (answer.status == 0) {
        g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: no answer", action.c_str());
        return read;
    }
    read.reply.status = SoapStatus::Fault;
    std::optional<XmlMessage> message;
    if (!answer.isTooLarge)
        message = XmlMessage::parse(answer.body);
    const std::optional<SoapFault> fault = message ? faultIn(*message) : std::nullopt;
    g_log(logDomain, G_LOG_LEVEL_DEBUG, "%s: HTTP status %u %s", action.c_str(), answer.status,
          fault ? fault->text.c_str() : "");
    if (answer.status == 401 || answer.status == 403 || (fault && fault->isRefusal)) {
        read.reply.status = SoapStatus::Refused;
    } else if (!fault && message && answer.status / 100 == 2) {
        read.reply.status = SoapStatus::Ok;
        read.reply.message = std::make_shared<const XmlMessage>(std::move(*message));
    } else {
        read.isBareRefusal = !fault && (answer.status == 400 || answer.status == 500);
    }
    return read;
}

// What the device's clock may be ahead, the best guess first. Without any time from the device its
// clock is taken to be right.
std::vector<std::int64_t> clockOffsets(const SoapReply &reply, const HttpAnswer &answer)
{
    const std::int64_t now = g_get_real_time() / G_USEC_PER_SEC;
    std::vector<std::int64_t> offsets;
    const auto add = [&offsets](std::int64_t offset) {
        for (const std::int64_t known : offsets)
            if (std::abs(known - offset) <= clockStep)
                return;
        offsets.push_back(offset);
    };
    if (const auto time = reply.message ? parseSystemTime(*reply.message) : std::nullopt)
        add(*time - now);
    if (answer.date)
        add(*answer.date - now);
    add(0);
    return offsets;
}

} // namespace

struct SoapClient::Session
{
    explicit Session(GMainContext *mainContext)
        : context(g_main_context_ref(mainContext))
        , http(newHttpSession(mainContext))
    {
    }

    base::GMainContextPtr context;
    base::GObjectPtr<SoupSession> http;
    std::string deviceService;
    base::Credentials credentials;
    SoapOptions options;
    Signing signing = Signing::Http;
    std::optional<base::HttpDigest> digest;  ///< answers the challenge that was accepted last
    bool wasHelpful = false;                 ///< it has answered a request successfully
    bool isLatin1 = false;                   ///< the digest is made of the login in ISO 8859-1
    bool takesBasic = false;                 ///< it was accepted after a token was refused
    std::optional<std::int64_t> clockOffset; ///< seconds the device's clock is ahead
};

class SoapClient::Call : public Request
{
public:
    Call(std::shared_ptr<Session> session, std::string service, std::string action,
         std::string body, SoapKind kind, Done done)
        : m_session(std::move(session))
        , m_address(parseHttpAddress(service).value_or(HttpAddress()))
        , m_service(std::move(service))
        , m_action(std::move(action))
        , m_body(std::move(body))
        , m_kind(kind)
        , m_done(std::move(done))
    {
        if (m_session->signing == Signing::Http)
            sendUnsignedOrDigest();
        else if (m_session->clockOffset)
            sendToken();
        else
            readClock();
    }

private:
    void post(const std::string &service, const std::string &action, SoapKind kind,
              const std::string &envelope, const std::string &authorization,
              std::function<void(HttpAnswer)> answered)
    {
        const SoapOptions &options = m_session->options;
        HttpRequest post;
        post.address = service;
        post.contentType = "application/soap+xml; charset=utf-8; action=\"" + action + '"';
        post.body = envelope;
        post.authorization = authorization;
        post.milliseconds =
            kind == SoapKind::Question ? options.questionMilliseconds : options.changeMilliseconds;
        post.mayReuseConnection = kind == SoapKind::Question;
        m_exchange = sendHttp(m_session->context.get(), m_session->http.get(), std::move(post),
                              std::move(answered));
    }

    [[nodiscard]] bool hasUser() const { return !m_session->credentials.user.empty(); }

    void sendUnsignedOrDigest()
    {
        std::string authorization;
        if (m_session->digest && hasUser())
            authorization = m_session->digest->authorization("POST", m_address.path, digestLogin());
        const bool isSigned = !authorization.empty();
        post(m_service, m_action, m_kind, buildEnvelope(m_body), authorization,
             [this, isSigned](const HttpAnswer &answer) { httpAnswered(answer, isSigned); });
    }

    void httpAnswered(const HttpAnswer &answer, bool wasSigned)
    {
        const ReadReply read = readReply(answer, m_action);
        const std::vector<base::HttpChallenge> challenges =
            base::parseChallenges(answer.challenges);
        if (answer.status == 401 && mayAnswer(challenges, wasSigned)) {
            sendUnsignedOrDigest();
            return;
        }
        if (answer.status == 401) {
            m_session->digest.reset();
            m_session->isLatin1 = false;
        } else if (wasSigned) {
            accepted();
        }
        m_asksForBasic =
            base::offersScheme(challenges, "basic") && !base::offersScheme(challenges, "digest");
        const bool isRefused =
            read.reply.status == SoapStatus::Refused || (read.isBareRefusal && !wasSigned);
        if (!isRefused || !hasUser()) {
            finish(read.reply);
            return;
        }
        m_refusal = read.reply;
        if (!mayTry())
            finish(read.reply);
        else if (m_session->takesBasic)
            tokensRefused();
        else
            readClock();
    }

    [[nodiscard]] bool mayTry() const
    {
        return !m_session->options.limit || m_session->options.limit->mayTryBeside();
    }

    void refused() const
    {
        if (m_session->options.limit)
            m_session->options.limit->refused(limitedRequest);
    }

    void accepted() const
    {
        if (m_session->options.limit)
            m_session->options.limit->accepted(limitedRequest);
    }

    [[nodiscard]] base::Credentials digestLogin() const
    {
        const base::Credentials &own = m_session->credentials;
        return m_session->isLatin1 ? base::latin1Of(own).value_or(own) : own;
    }

    // Whether there is a digest for these challenges that has not been refused already.
    bool mayAnswer(const std::vector<base::HttpChallenge> &challenges, bool wasSigned)
    {
        std::optional<base::HttpDigest> digest = base::HttpDigest::choose(challenges);
        if (base::offersScheme(challenges, "digest"))
            LoginMemory::instance().sawSecretLogin(m_address.host);
        const bool isStale = digest && digest->isStale();
        if (wasSigned && !isStale)
            refused();
        if (!digest || !hasUser() || !mayTry())
            return false;
        const bool isNew = m_answered == 0 || (isStale && m_answered == 1);
        if (!isNew && !mayTryLatin1(*digest))
            return false;
        ++m_answered;
        m_session->digest = std::move(digest);
        return true;
    }

    /// Once, where the digest of the login in UTF-8 was refused.
    bool mayTryLatin1(const base::HttpDigest &digest)
    {
        if (m_session->isLatin1 || digest.wantsUtf8() || digest.isStale() ||
            !base::latin1Of(m_session->credentials))
            return false;
        m_session->isLatin1 = true;
        return true;
    }

    void readClock()
    {
        post(
            m_session->deviceService, clockAction, SoapKind::Question, buildEnvelope(clockBody), {},
            [this](const HttpAnswer &answer) {
                const SoapReply reply = readReply(answer, clockAction).reply;
                if (reply.status == SoapStatus::NoAnswer) {
                    finish(reply);
                    return;
                }
                m_offsets = clockOffsets(reply, answer);
                sendNextToken();
            });
    }

    // The next clock that the device may have, but for the one that was tried already.
    void sendNextToken()
    {
        const std::optional<std::int64_t> tried = m_session->clockOffset;
        while (m_tokens > 0 && !m_offsets.empty() && tried &&
               std::abs(m_offsets.front() - *tried) <= clockStep)
            m_offsets.erase(m_offsets.begin());
        if (m_offsets.empty() || m_tokens == maxTokens || !mayTry()) {
            tokensRefused();
            return;
        }
        m_session->clockOffset = m_offsets.front();
        m_offsets.erase(m_offsets.begin());
        sendToken();
    }

    void sendToken()
    {
        ++m_tokens;
        const TokenStamp stamp = TokenStamp::now(m_session->clockOffset.value_or(0));
        post(m_service, m_action, m_kind,
             buildSignedEnvelope(m_body, m_session->credentials, stamp), {},
             [this](const HttpAnswer &answer) { tokenAnswered(answer); });
    }

    void tokenAnswered(const HttpAnswer &answer)
    {
        ReadReply read = readReply(answer, m_action);
        // From a device that has never done anything else this is how it refuses a login.
        if (read.isBareRefusal && !m_session->wasHelpful)
            read.reply.status = SoapStatus::Refused;
        if (read.reply.status == SoapStatus::Ok) {
            m_session->signing = Signing::Token;
            LoginMemory::instance().sawSecretLogin(m_address.host);
            accepted();
        }
        if (read.reply.status != SoapStatus::Refused) {
            finish(read.reply);
            return;
        }
        refused();
        m_refusal = read.reply;
        // It worked before: perhaps the device's clock was set meanwhile.
        if (m_tokens == 1 && m_offsets.empty() && m_session->signing == Signing::Token)
            readClock();
        else
            sendNextToken();
    }

    void tokensRefused()
    {
        if (m_asksForBasic && mayTry() && maySendClear())
            sendBasic();
        else
            finish(m_refusal.value_or(SoapReply{SoapStatus::Refused, nullptr}));
    }

    [[nodiscard]] bool maySendClear() const
    {
        if (m_address.secure)
            return true;
        const bool isAllowed = m_session->options.clearPassword == ClearPassword::AsLastResort &&
                               !LoginMemory::instance().hasSecretLogin(m_address.host);
        if (!isAllowed) {
            g_log(logDomain, G_LOG_LEVEL_DEBUG,
                  "%s: %s asks for the password in clear and does not get it", m_action.c_str(),
                  m_address.host.c_str());
        }
        return isAllowed;
    }

    void sendBasic()
    {
        post(
            m_service, m_action, m_kind, buildEnvelope(m_body),
            base::basicAuthorization(m_session->credentials),
            [this](const HttpAnswer &answer) {
                const SoapReply reply = readReply(answer, m_action).reply;
                m_session->takesBasic = reply.status == SoapStatus::Ok;
                if (reply.status == SoapStatus::Ok)
                    accepted();
                else if (reply.status == SoapStatus::Refused)
                    refused();
                finish(reply);
            });
    }

    // The receiver may destroy this call, and with it the reply that the caller holds.
    void finish(SoapReply reply)
    {
        m_session->wasHelpful = m_session->wasHelpful || reply.status == SoapStatus::Ok;
        const Done done = std::move(m_done);
        done(reply);
    }

    std::shared_ptr<Session> m_session;
    HttpAddress m_address; ///< m_service, taken apart
    std::string m_service;
    std::string m_action;
    std::string m_body;
    SoapKind m_kind;
    Done m_done;
    int m_answered = 0; ///< digest challenges of this call
    int m_tokens = 0;   ///< sent in this call
    bool m_asksForBasic = false;
    std::vector<std::int64_t> m_offsets; ///< of the device's clock, not tried yet
    std::optional<SoapReply> m_refusal;
    RequestPtr m_exchange;
};

SoapClient::SoapClient(GMainContext *context, std::string deviceService,
                       base::Credentials credentials, SoapOptions options)
    : m_session(std::make_shared<Session>(context))
{
    m_session->deviceService = std::move(deviceService);
    m_session->credentials = std::move(credentials);
    m_session->options = options;
}

SoapClient::~SoapClient() = default;

const std::string &SoapClient::deviceService() const
{
    return m_session->deviceService;
}

RequestPtr SoapClient::call(const std::string &service, const std::string &action,
                            const std::string &body, SoapKind kind, Done done)
{
    return std::make_unique<Call>(m_session, service, action, body, kind, std::move(done));
}

} // namespace onvif
