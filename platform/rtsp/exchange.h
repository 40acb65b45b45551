#pragma once

#include "platform/base/tcp_channel.h"
#include "platform/base/timer.h"
#include "platform/rtsp/http_tunnel.h"
#include "platform/rtsp/rtsp_login.h"
#include "platform/rtsp/stream_splitter.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace rtsp {

/// A request of ours. CSeq, User-Agent and Authorization are added when it is sent.
struct Request
{
    std::string method;
    std::string url;
    Headers headers;
};

/**
 * Requests and answers over one RTSP connection at a time (RFC 2326 6 to 10), and the packets in
 * between. Answers challenges: each once, again with a new nonce where only the nonce was refused;
 * a login that was refused is never sent again. Lives on the loop thread.
 */
class Exchange : public StreamSplitter::Sink
{
public:
    /// Each function may close or destroy the exchange.
    class Client
    {
    public:
        virtual ~Client() = default;
        /// An interleaved packet; the bytes are valid during the call.
        virtual void packet(uint8_t channel, std::span<const uint8_t> data) = 0;
        /// By the camera, by the network, or because what came is no RTSP. Requests that are not
        /// answered will not be.
        virtual void disconnected(base::ChannelEnd reason) = 0;
        /// The web server in front of the camera answered with that status, and is left.
        virtual void tunnelRefused(int status) = 0;
    };
    /// Runs once: with the answer, or with null when there was none in time. Never after close().
    using Done = std::function<void(const Reply *)>;

    explicit Exchange(Client &client) : m_client(client) {}
    ~Exchange() override { close(); }
    Exchange(const Exchange &) = delete;
    Exchange &operator=(const Exchange &) = delete;

    /// Whose login is used from now on. What was learned from challenges before is forgotten.
    void setLogin(RtspLogin login, std::shared_ptr<LoginPolicy> policy);
    /// Connects; a connection that was open is closed.
    void open(const base::Endpoint &endpoint, std::chrono::milliseconds limit,
              std::function<void()> opened);
    /// Connects through the web server there.
    void openTunnel(const base::Endpoint &endpoint, const std::string &path,
                    std::chrono::milliseconds limit, std::function<void()> opened);
    /// Goes on with a connection on which everything that was asked is answered.
    void adopt(base::TcpChannel channel, bool tls, unsigned sequence);
    void send(Request request, std::chrono::milliseconds limit, Done done);
    /// An interleaved packet to the camera.
    void sendPacket(uint8_t channel, std::span<const uint8_t> data);
    /// Nothing of what was sent is answered any more.
    void close();
    /// Sends a last request and leaves the rest to the background. See closeInBackground().
    void closeWith(Request request, std::function<void()> closed = nullptr);

    bool isOpen() const { return m_channel.isOpen(); }
    base::GObjectPtr<GInetSocketAddress> remoteAddress() const { return m_channel.remoteAddress(); }
    /// A request was sent again with a login, and is not answered yet: where the camera closes the
    /// connection after its challenge, it is to be repeated over a new one.
    bool isAnsweringChallenge() const { return m_isAnsweringChallenge; }
    /// Whether the connection has brought anything since it was opened or adopted.
    bool hasAnswered() const { return m_hasAnswered; }
    /// The last answer said that it is: the camera closes the connection behind it.
    bool wasLastAnswer() const { return m_wasLastAnswer; }
    /// Whether an answer has begun and not ended.
    bool hasBegunAnswer() const { return m_splitter && m_splitter->hasBegun(); }

private:
    struct Pending
    {
        unsigned sequence = 0;
        Request request;
        Done done;
        bool withLogin = false;
        int challenges = 0; ///< answered for this request
        std::unique_ptr<base::Timer> limit;
    };

    void packet(uint8_t channel, std::span<const uint8_t> data) override;
    void reply(Reply reply) override;
    void request(const ServerRequest &request) override;

    void received(std::string_view data);
    void transmit(const std::string &text);
    void ended(base::ChannelEnd reason);
    base::TcpChannel::Handlers handlers(std::function<void()> opened);
    void reset();
    void write(Pending &pending);
    std::string textOf(const Request &request, unsigned sequence);
    std::list<Pending>::iterator findPending(const std::string &sequence);
    bool answersChallenge(const Reply &reply, Pending &pending);
    void loginAccepted(const std::string &method);
    void expire(unsigned sequence);

    Client &m_client;
    base::TcpChannel m_channel;
    std::optional<base::TcpChannel> m_toCamera; ///< of a tunnel; the other is from the camera
    std::shared_ptr<HttpTunnel> m_tunnel;       ///< while it is being opened
    std::shared_ptr<StreamSplitter> m_splitter; ///< shared with the call that feeds it
    RtspLogin m_login;
    std::shared_ptr<LoginPolicy> m_policy;
    std::list<Pending> m_pending; ///< in the order of sending
    unsigned m_sequence = 0;
    bool m_tls = false;
    bool m_isAnsweringChallenge = false;
    bool m_loginAccepted = false; ///< a request with the login was not refused
    bool m_gaveSecondChance = false;
    bool m_hasAnswered = false;
    bool m_wasLastAnswer = false;
};

} // namespace rtsp
