#include "platform/rtsp/exchange.h"

#include "platform/rtsp/connection_closer.h"

#include <algorithm>
#include <array>
#include <utility>

namespace rtsp {
namespace {

constexpr int statusUnauthorized = 401;
constexpr int maxChallenges = 3; // for one request, all but the first of them stale nonces
constexpr std::string_view hexDigits = "0123456789ABCDEF";

/// A camera's address as part of a request line: blanks and control characters would end it.
std::string safeUrl(const std::string &url)
{
    std::string safe;
    for (const char c : url) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte > 0x20 && byte != 0x7f)
            safe += c;
        else
            safe += {'%', hexDigits[byte >> 4], hexDigits[byte & 15]};
    }
    return safe;
}

/// What requests of cameras are answered with (RFC 2326 10): "are you there?" with yes.
const char *answerTo(const std::string &method)
{
    for (const char *known : {"OPTIONS", "GET_PARAMETER", "SET_PARAMETER", "ANNOUNCE", "TEARDOWN"})
        if (method == known)
            return "200 OK";
    return "501 Not Implemented";
}

bool isSafeValue(const std::string &text)
{
    return text.find_first_of("\r\n") == std::string::npos;
}

} // namespace

void Exchange::setLogin(RtspLogin login, std::shared_ptr<LoginPolicy> policy)
{
    m_login = std::move(login);
    m_policy = std::move(policy);
    m_loginAccepted = m_gaveSecondChance = m_isAnsweringChallenge = false;
}

void Exchange::open(const base::Endpoint &endpoint, std::chrono::milliseconds limit,
                    std::function<void()> opened)
{
    close();
    m_tls = endpoint.tls;
    m_channel.open(endpoint, limit, handlers(std::move(opened)));
}

void Exchange::openTunnel(const base::Endpoint &endpoint, const std::string &path,
                          std::chrono::milliseconds limit, std::function<void()> opened)
{
    close();
    m_tls = endpoint.tls;
    const HttpTunnel::Handlers handling{
        .opened =
            [this, opened = std::move(opened)](TunnelEnds ends) {
                m_channel = std::move(ends.fromCamera);
                m_channel.setHandlers(handlers(nullptr));
                m_toCamera = std::move(ends.toCamera);
                m_toCamera->setHandlers({.opened = nullptr,
                                         .received = [](std::string_view) {},
                                         .ended = [](base::ChannelEnd) {}});
                opened();
                if (m_channel.isOpen() && !ends.firstBytes.empty())
                    received(ends.firstBytes);
            },
        .ended = [this](base::ChannelEnd reason) { ended(reason); },
        .refused = [this](int status) { m_client.tunnelRefused(status); }};
    m_tunnel = std::make_shared<HttpTunnel>(endpoint, path, m_login, m_policy, limit, handling);
}

void Exchange::adopt(base::TcpChannel channel, bool tls, unsigned sequence)
{
    close();
    m_tls = tls;
    m_sequence = sequence;
    m_channel = std::move(channel);
    m_channel.setHandlers(handlers(nullptr));
}

void Exchange::close()
{
    reset();
    m_channel.close();
    m_toCamera.reset();
    if (m_tunnel)
        m_tunnel->cancel();
}

void Exchange::closeWith(Request request, std::function<void()> closed)
{
    std::string text = textOf(request, ++m_sequence);
    if (m_toCamera)
        text = HttpTunnel::encoded(text);
    if (m_channel.isOpen())
        closeInBackground(std::move(m_channel), std::exchange(m_toCamera, std::nullopt), text,
                          std::move(closed));
    else if (closed)
        closed();
    close();
}

void Exchange::reset()
{
    if (m_splitter)
        m_splitter->stop();
    m_splitter = std::make_shared<StreamSplitter>(*this);
    m_pending.clear();
    m_isAnsweringChallenge = m_hasAnswered = m_wasLastAnswer = false;
}

base::TcpChannel::Handlers Exchange::handlers(std::function<void()> opened)
{
    return {.opened = std::move(opened),
            .received = [this](std::string_view data) { received(data); },
            .ended = [this](base::ChannelEnd reason) { ended(reason); }};
}

void Exchange::send(Request request, std::chrono::milliseconds limit, Done done)
{
    Pending &pending = m_pending.emplace_back();
    pending.request = std::move(request);
    pending.done = std::move(done);
    write(pending);
    pending.limit = std::make_unique<base::Timer>();
    pending.limit->start(limit, [this, &pending] { expire(pending.sequence); });
}

void Exchange::write(Pending &pending)
{
    pending.sequence = ++m_sequence;
    pending.withLogin = m_login.isInUse();
    transmit(textOf(pending.request, pending.sequence));
}

std::string Exchange::textOf(const Request &request, unsigned sequence)
{
    const std::string url = safeUrl(request.url);
    std::string text = request.method + ' ' + url +
                       " RTSP/1.0\r\nCSeq: " + std::to_string(sequence) +
                       "\r\nUser-Agent: Zelvaro\r\n";
    for (const auto &[name, value] : request.headers)
        if (isSafeValue(value))
            text += name + ": " + value + "\r\n";
    const std::string authorization = m_login.authorization(request.method.c_str(), url);
    if (!authorization.empty())
        text += "Authorization: " + authorization + "\r\n";
    return text + "\r\n";
}

void Exchange::sendPacket(uint8_t channel, std::span<const uint8_t> data)
{
    const std::array<char, 4> head = {'$', static_cast<char>(channel),
                                      static_cast<char>(data.size() >> 8),
                                      static_cast<char>(data.size() & 0xff)};
    std::string packet(head.data(), head.size());
    packet.append(reinterpret_cast<const char *>(data.data()), data.size());
    transmit(packet);
}

void Exchange::transmit(const std::string &text)
{
    if (m_toCamera)
        m_toCamera->send(HttpTunnel::encoded(text));
    else
        m_channel.send(text);
}

void Exchange::received(std::string_view data)
{
    const std::shared_ptr<StreamSplitter> splitter = m_splitter;
    const bool isRtsp =
        splitter->feed({reinterpret_cast<const uint8_t *>(data.data()), data.size()});
    // After close() this object may be gone; the splitter was stopped then.
    if (!isRtsp) {
        m_channel.close();
        ended(base::ChannelEnd::Closed);
    }
}

void Exchange::ended(base::ChannelEnd reason)
{
    m_splitter->stop();
    m_pending.clear();
    m_client.disconnected(reason);
}

void Exchange::packet(uint8_t channel, std::span<const uint8_t> data)
{
    m_client.packet(channel, data);
}

void Exchange::request(const ServerRequest &request)
{
    const std::string sequence = request.first("CSeq");
    transmit(std::string("RTSP/1.0 ") + answerTo(request.method) +
             (sequence.empty() ? "" : "\r\nCSeq: " + sequence) + "\r\n\r\n");
}

std::list<Exchange::Pending>::iterator Exchange::findPending(const std::string &sequence)
{
    const std::optional<size_t> number = parseSize(sequence, 10);
    const auto found = std::find_if(m_pending.begin(), m_pending.end(), [&](const Pending &each) {
        return number && each.sequence == *number;
    });
    // A number that was sent once belongs to a request that is no longer waited for. Some cameras
    // send none, or always the same.
    const bool isLate = number && *number > 0 && *number <= m_sequence;
    return found == m_pending.end() && !isLate ? m_pending.begin() : found;
}

void Exchange::reply(Reply reply)
{
    m_hasAnswered = true;
    if (reply.status < 200)
        return; // 100 Continue: the answer proper follows
    const auto pending = findPending(reply.first("CSeq"));
    if (pending == m_pending.end())
        return;
    const std::shared_ptr<StreamSplitter> alive = m_splitter;
    const bool isChallenge = reply.status == statusUnauthorized;
    if (isChallenge && answersChallenge(reply, *pending)) {
        m_isAnsweringChallenge = true;
        if (reply.keepsConnection) {
            write(*pending);
            return;
        }
        m_channel.close();
        ended(base::ChannelEnd::Closed);
        return;
    }
    m_isAnsweringChallenge = false;
    m_wasLastAnswer = !reply.keepsConnection;
    if (pending->withLogin && !isChallenge)
        loginAccepted(pending->request.method);
    if (isChallenge)
        m_login.forgetChallenge(); // or the farewell would be one more wrong answer
    const Done done = std::move(pending->done);
    m_pending.erase(pending);
    done(&reply);
}

/// Whether the request is to be sent again, with a login that the camera has not refused.
bool Exchange::answersChallenge(const Reply &reply, Pending &pending)
{
    const std::string refused = pending.withLogin ? m_login.nonce() : std::string();
    const bool isUnderstood =
        m_login.takeChallenge(reply.all("WWW-Authenticate"), *m_policy, m_tls);
    const bool isRefused = pending.withLogin && !m_login.isStale();
    if (isRefused)
        m_policy->refused(pending.request.method);
    if (!isUnderstood || ++pending.challenges > maxChallenges || !m_policy->mayTry())
        return false;
    if (!isRefused || (!m_loginAccepted && m_login.tryLatin1()))
        return true;
    // A nonce of its own for each request, without a word that the old one is too old: only where
    // the login is known to be right, and once.
    const bool hasNewNonce = m_loginAccepted && !m_gaveSecondChance && m_login.nonce() != refused;
    m_gaveSecondChance = m_gaveSecondChance || hasNewNonce;
    return hasNewNonce;
}

void Exchange::loginAccepted(const std::string &method)
{
    m_loginAccepted = true;
    m_policy->accepted(method);
    if (m_login.isLatin1())
        m_policy->noteLatin1();
}

void Exchange::expire(unsigned sequence)
{
    const auto pending = std::find_if(m_pending.begin(), m_pending.end(), [&](const Pending &each) {
        return each.sequence == sequence;
    });
    if (pending == m_pending.end())
        return;
    const Done done = std::move(pending->done);
    m_pending.erase(pending);
    done(nullptr);
}

} // namespace rtsp
