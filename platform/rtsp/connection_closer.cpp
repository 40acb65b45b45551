#include "platform/rtsp/connection_closer.h"

#include "platform/base/timer.h"
#include "platform/rtsp/stream_splitter.h"

#include <memory>
#include <utility>

namespace rtsp {
namespace {

using namespace std::chrono_literals;

constexpr auto farewell = 100ms;

/// Holds itself until the connection is closed.
class Closer : public std::enable_shared_from_this<Closer>, private StreamSplitter::Sink
{
public:
    Closer(base::TcpChannel channel, std::optional<base::TcpChannel> toCamera,
           std::function<void()> closed)
        : m_channel(std::move(channel))
        , m_toCamera(std::move(toCamera))
        , m_closed(std::move(closed))
    {
    }

    void run(const std::string &lastWords)
    {
        m_self = shared_from_this();
        m_limit.start(
            farewell, [this] { end(); });
        m_channel.setHandlers({.opened = nullptr,
                               .received = [this](std::string_view data) { received(data); },
                               .ended = [this](base::ChannelEnd) { end(); }});
        if (m_toCamera)
            m_toCamera->setHandlers({.opened = nullptr,
                                     .received = [](std::string_view) {},
                                     .ended = [](base::ChannelEnd) {}});
        (m_toCamera ? *m_toCamera : m_channel).send(lastWords);
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
        m_toCamera.reset();
        if (const auto closed = std::exchange(m_closed, nullptr))
            closed();
    }

    base::TcpChannel m_channel;
    std::optional<base::TcpChannel> m_toCamera;
    std::function<void()> m_closed;
    StreamSplitter m_splitter{*this};
    base::Timer m_limit;
    std::shared_ptr<Closer> m_self;
};

} // namespace

void closeInBackground(base::TcpChannel channel, std::optional<base::TcpChannel> toCamera,
                       const std::string &lastWords, std::function<void()> closed)
{
    std::make_shared<Closer>(std::move(channel), std::move(toCamera), std::move(closed))
        ->run(lastWords);
}

} // namespace rtsp
