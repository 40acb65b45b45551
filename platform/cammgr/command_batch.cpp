#include "platform/cammgr/command_batch.h"

#include <utility>

namespace cammgr {
namespace {

using namespace std::chrono_literals;

constexpr auto connectLimit = 4s;
constexpr auto replyLimit = 6s;
/// A camera that answers without a head and keeps the connection open has said all it will.
constexpr auto bareTextPause = 700ms;
constexpr rtsp::ReplyReader::Limits limits{.headerBytes = 16 * 1024, .bodyBytes = 1024 * 1024};

} // namespace

const std::string &CommandBatch::failureText()
{
    static const std::string text = "999 No answer from the camera";
    return text;
}

void CommandBatch::start(const base::Endpoint &endpoint, std::vector<std::string> requests,
                         std::chrono::milliseconds timeLimit, Done done)
{
    cancel();
    m_endpoint = endpoint;
    m_requests = std::move(requests);
    m_replies.clear();
    m_done = std::move(done);
    m_batchLimit.start(timeLimit, [this] { failRest(); });
    if (m_endpoint.port != 0)
        connect();
    else
        m_replyLimit.start(0ms, [this] { failRest(); });
}

void CommandBatch::cancel()
{
    m_done = nullptr;
    m_batchLimit.stop();
    m_replyLimit.stop();
    m_channel.close();
}

void CommandBatch::connect()
{
    m_connectionUsed = false;
    m_channel.open(m_endpoint, connectLimit,
                   {.opened = [this] { sendNext(); },
                    .received = [this](std::string_view data) { received(data); },
                    .ended = [this](base::ChannelEnd reason) { ended(reason); }});
}

void CommandBatch::sendNext()
{
    m_reader = rtsp::ReplyReader(rtsp::ReplyReader::Protocol::Http, limits);
    m_bareText.clear();
    m_channel.send(m_requests[m_replies.size()]);
    m_replyLimit.start(replyLimit, [this] { next(failureText()); });
}

void CommandBatch::received(std::string_view data)
{
    if (!m_bareText.empty()) {
        receivedBareText(data);
        return;
    }
    const rtsp::ReplyReader::State state = m_reader.feed(data);
    if (m_reader.isBareText()) {
        receivedBareText(m_reader.takeBareText());
        return;
    }
    switch (state) {
    case rtsp::ReplyReader::State::Incomplete:
        return;
    case rtsp::ReplyReader::State::Complete:
        answered(m_reader.take());
        return;
    case rtsp::ReplyReader::State::Broken:
        next(failureText());
        return;
    }
}

void CommandBatch::receivedBareText(std::string_view text)
{
    m_bareText += text;
    if (m_bareText.size() > limits.bodyBytes)
        next(failureText());
    else
        m_replyLimit.start(bareTextPause, [this] { next(std::move(m_bareText)); });
}

void CommandBatch::ended(base::ChannelEnd reason)
{
    if (reason != base::ChannelEnd::Closed)
        failRest(); // the next one would not get there either
    else if (!m_bareText.empty())
        next(std::move(m_bareText));
    else if (m_connectionUsed && !m_reader.hasBegun())
        connect(); // dropped between two requests
    else if (m_reader.end() == rtsp::ReplyReader::State::Complete)
        answered(m_reader.take());
    else
        next(failureText());
}

void CommandBatch::answered(const rtsp::Reply &reply)
{
    m_connectionUsed = true;
    if (!reply.keepsConnection)
        m_channel.close();
    m_replyLimit.stop();
    const bool refused = reply.status >= 300 && reply.body.empty();
    m_replies.push_back(refused ? std::to_string(reply.status) + " refused by the camera"
                                : reply.body);
    if (m_replies.size() == m_requests.size())
        finish();
    else if (m_channel.isOpen())
        sendNext();
    else
        connect();
}

/// Takes text for the reply and continues with a fresh connection: on the old one, late words of
/// this reply would be taken for the next.
void CommandBatch::next(std::string text)
{
    m_channel.close();
    m_replyLimit.stop();
    m_replies.push_back(std::move(text));
    if (m_replies.size() == m_requests.size())
        finish();
    else
        connect();
}

void CommandBatch::failRest()
{
    m_replies.resize(m_requests.size(), failureText());
    finish();
}

void CommandBatch::finish()
{
    Done done = std::exchange(m_done, nullptr);
    cancel();
    done(std::exchange(m_replies, {}));
}

} // namespace cammgr
