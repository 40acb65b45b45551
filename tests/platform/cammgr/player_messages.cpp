#include "tests/platform/cammgr/player_messages.h"

void PlayerMessages::callback(int message, int value, void *context, char **strings)
{
    auto *self = static_cast<PlayerMessages *>(context);
    Message copy{.kind = message, .value = value, .texts = {}};
    for (int i = 0; strings && i < value; ++i)
        copy.texts.emplace_back(strings[i]);
    const std::lock_guard lock(self->m_mutex);
    self->m_messages.push_back(std::move(copy));
    self->m_changed.notify_all();
}

std::optional<PlayerMessages::Message> PlayerMessages::next(std::chrono::seconds limit)
{
    std::unique_lock lock(m_mutex);
    if (!m_changed.wait_for(lock, limit, [this] { return m_taken < m_messages.size(); }))
        return std::nullopt;
    return m_messages[m_taken++];
}

std::optional<PlayerMessages::Message> PlayerMessages::nextOf(int kind, std::chrono::seconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    std::unique_lock lock(m_mutex);
    for (;;) {
        while (m_taken < m_messages.size()) {
            const Message &message = m_messages[m_taken++];
            if (message.kind == kind)
                return message;
        }
        if (m_changed.wait_until(lock, deadline) == std::cv_status::timeout)
            return std::nullopt;
    }
}

int PlayerMessages::count() const
{
    const std::lock_guard lock(m_mutex);
    return static_cast<int>(m_messages.size());
}
