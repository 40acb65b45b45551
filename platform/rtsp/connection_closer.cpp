#include "platform/rtsp/connection_closer.h"

#include "platform/base/timer.h"
#include "platform/rtsp/stream_splitter.h"

#include <memory>

namespace rtsp {
namespace {

using namespace std::chrono_literals;

constexpr auto farewell = 100ms;

/// Holds itself until the connection is closed.
class Closer : public std::enable_shared_from_this<Closer>, private StreamSplitter::Sink
{
public:
    explicit Closer(base::TcpChannel channel) : m_channel(std::move(channel)) {}

    void run(const std::string &lastWords)
    {
        m_self = shared_from_this();
        m_limit.start(
            farewell, [this] { end(); });
        m_channel.setHandlers({.opened = nullptr,
                               .received = [this](std::string_view data) { received(data); },
                               .ended = [this](base::ChannelEnd) { end(); }});
        m_channel.send(lastWords);
    }

private:
    void received(std::string_view data)
    {
        const std::shared_ptr<Closer> alive = m_self;
        if (!m_splitter.feed({reinterpret_cast<const uint8_t *>(data.data()), data.size()}))
            end();
    }
    void packet(uint8_t, std::span<const uint8_t>) override {}
    void request(const ServerRequest &) override {}
    void reply(Reply) override { end(); }
    void end()
    {
        const std::shared_ptr<Closer> alive = std::move(m_self);
        m_splitter.stop();
        m_limit.stop();
        m_channel.close();
    }

    base::TcpChannel m_channel;
    StreamSplitter m_splitter{*this};
    base::Timer m_limit;
    std::shared_ptr<Closer> m_self;
};

} // namespace

void closeInBackground(base::TcpChannel channel, const std::string &lastWords)
{
    std::make_shared<Closer>(std::move(channel))->run(lastWords);
}

} // namespace rtsp
