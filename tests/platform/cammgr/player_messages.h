#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

/// Collects what a player's callback says. Pass callback and this object as its context.
class PlayerMessages
{
public:
    struct Message
    {
        int kind = 0;
        int value = 0;
        std::vector<std::string> texts;
    };

    static void callback(int message, int value, void *context, char **strings);

    /// The next message that was not taken yet; nullopt when none came in time.
    std::optional<Message> next(std::chrono::seconds limit = std::chrono::seconds(30));
    /// The next message of that kind; others are dropped.
    std::optional<Message> nextOf(int kind, std::chrono::seconds limit = std::chrono::seconds(30));
    /// How many messages came, taken or not.
    int count() const;

private:
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<Message> m_messages;
    size_t m_taken = 0;
};
