#pragma once

#include "platform/base/tcp_channel.h"
#include "platform/base/timer.h"
#include "platform/cammgr/io_thread.h"
#include "platform/rtsp/reply_reader.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace cammgr {

/**
 * Carries request texts to the camera's HTTP service, byte for byte and in order, on one
 * connection for as long as the camera keeps it open, and collects the bodies of the replies.
 * Lives on the I/O thread.
 */
class CommandBatch
{
public:
    /// One text for each request, in order: the reply's body, or a failure text.
    using Done = std::function<void(std::vector<std::string>)>;

    /// Starts a batch; one that is under way is cancelled. done runs later, once, and not after
    /// timeLimit. An endpoint with port 0 fails every request.
    void start(const base::Endpoint &endpoint, std::vector<std::string> requests,
               std::chrono::milliseconds timeLimit, Done done);
    /// done never runs.
    void cancel();

    /// Replaces the reply of a request that could not be carried. Its first line is not the one of
    /// success.
    static const std::string &failureText();

private:
    void connect();
    void sendNext();
    void received(std::string_view data);
    void receivedBareText(std::string_view text);
    void ended(base::ChannelEnd reason);
    void answered(const rtsp::Reply &reply);
    void next(std::string text);
    void failRest();
    /// Hands over the replies; may destroy this object.
    void finish();

    base::Endpoint m_endpoint;
    std::vector<std::string> m_requests;
    std::vector<std::string> m_replies;
    Done m_done;
    base::TcpChannel m_channel;
    rtsp::ReplyReader m_reader{rtsp::ReplyReader::Protocol::Http};
    std::string m_bareText; ///< of a camera that answers without an HTTP head
    base::Timer m_batchLimit;
    base::Timer m_replyLimit;
    bool m_connectionUsed = false; ///< has carried a reply: may have been dropped since
};

} // namespace cammgr
