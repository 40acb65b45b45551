#pragma once

#include "platform/base/camera_address.h"
#include "platform/base/timer.h"
#include "platform/rtsp/exchange.h"
#include "platform/rtsp/open_session.h"
#include "platform/rtsp/play_session.h"
#include "platform/rtsp/stream_request.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace rtsp {

/**
 * The way to one stream of a camera, or from the client to it: connects, follows redirections,
 * makes a session, tries another transport where the camera does not take the first. It must be
 * destroyed in a later turn of the loop than the one in which it calls its client. Loop thread.
 */
class StreamConnection : public Exchange::Client, public PlaySession::Client
{
public:
    class Client
    {
    public:
        virtual ~Client() = default;
        /// Of the camera's description, each time that one is read. May close the connection.
        virtual TrackChoice chooseTracks(const SessionDescription &description) = 0;
        /// The camera has answered PLAY. Again after tryAnotherWay().
        virtual void playing() = 0;
        /// While it plays: whether what was asked for goes its way, so that no other is tried.
        virtual bool isSettled() const = 0;
        /// Once, and last. The connection is closed.
        virtual void connectionEnded(const StreamFailure &failure) = 0;
    };

    /// The client must outlive the connection.
    StreamConnection(Client &client, const StreamRequest &request, SessionPlan plan);

    void start();
    /// Goes on over a connection that has brought the description.
    void start(OpenSession session);
    /// The client is not called any more.
    /// @param closed runs later, when the camera has answered the farewell, or in 100 ms; may be
    /// null
    void close(std::function<void()> closed = nullptr);
    /// Closes and tells the client why.
    void end(StreamFailure failure);
    /// What is played does not come: over UDP, once, where that is allowed; else it ends.
    void tryAnotherWay(StreamFailure failure);

    bool isClosed() const { return m_isClosed; }
    /// PLAY was answered.
    bool isPlaying() const { return m_isPlaying; }
    bool isUdp() const { return m_isUdp; }
    /// The first one of those that the client chose; null while there is no session.
    MediaTrack *firstTrack() const { return m_session ? m_session->firstTrack() : nullptr; }
    /// See Receiver::transportName().
    const char *transportName() const;

private:
    using Step = SessionResult::Step;

    void packet(uint8_t channel, std::span<const uint8_t> data) override;
    void disconnected(base::ChannelEnd reason) override;
    void tunnelRefused(int status) override;
    TrackChoice chooseTracks(const SessionDescription &description) override;
    void sessionDone(const SessionResult &result) override;

    bool takeUrl(const std::string &text);
    void startLimit();
    void connect();
    void opened();
    void leave(std::function<void()> left);
    void closedAt(Step step);
    void silentAt(const SessionResult &result);
    void redirect(const std::string &location);

    StreamConnection::Client &m_client;
    const StreamRequest m_request;
    std::string m_url; ///< follows redirections
    base::Endpoint m_endpoint;
    std::string m_tunnelPath; ///< empty when there is no tunnel
    SessionPlan m_plan;
    Exchange m_exchange{*this};
    std::unique_ptr<PlaySession> m_session;
    base::Timer m_limit; ///< of connecting and setting up
    int m_redirections = 0;
    int m_attempts = 0;           ///< connections that were made
    bool m_repeats = false;       ///< the connection is made again for the same session
    bool m_isAdopted = false;     ///< the connection was handed over
    bool m_neverAnswered = false; ///< not even OPTIONS
    bool m_isPlaying = false;
    bool m_isUdp = false;
    bool m_isClosed = false;
    /// Why the first transport did not do: that of the second says less.
    std::optional<StreamFailure> m_firstFailure;
};

} // namespace rtsp
