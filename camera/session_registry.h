#pragma once

class CCameraCore;

namespace zelvaro {

/// The sessions that exist, for the library's callback: a message for a destroyed session is
/// dropped, and a session cannot be destroyed while a message is being posted to it. Any thread.
class SessionRegistry
{
public:
    static void enter(CCameraCore *session);
    /// Waits for a message that is just being posted; that takes microseconds.
    static void leave(CCameraCore *session);

    /// Runs post(session) and keeps the session alive meanwhile; does nothing when it no longer
    /// exists.
    template <typename Post>
    static void withSession(void *context, Post post)
    {
        const Hold hold(context);
        if (hold.session)
            post(hold.session);
    }

private:
    struct Hold
    {
        explicit Hold(void *context);
        ~Hold();
        Hold(const Hold &) = delete;
        Hold &operator=(const Hold &) = delete;

        CCameraCore *session;
    };
};

} // namespace zelvaro
