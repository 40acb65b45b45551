#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <string>
#include <utility>

namespace base {

/**
 * How often a login was refused by one camera. Accounts are locked after five wrong logins or more,
 * for up to half an hour, and somebody may mistype the password in the camera's own page too: three
 * wrong ones in that time are all that a camera gets, whatever asks for them. Also remembers what
 * was found out about the login. Shared by all that talk with the camera; any thread.
 */
class LoginLimit
{
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Whether one more wrong login would do no harm.
    [[nodiscard]] bool mayTry(Time now = std::chrono::steady_clock::now()) const;
    /// The same for what the picture does not depend on: leaves one try for that.
    [[nodiscard]] bool mayTryBeside(Time now = std::chrono::steady_clock::now()) const;

    /// @param request that it was refused for: cameras have users that may see a description, but
    /// no picture
    void refused(const std::string &request, Time now = std::chrono::steady_clock::now());
    /// What was refused of this request before no longer counts.
    void accepted(const std::string &request);
    /// The user wants the camera now: once more.
    void userAsked();

    /// The camera takes the login in Latin-1 only.
    void noteLatin1();
    [[nodiscard]] bool takesLatin1() const;

private:
    [[nodiscard]] std::size_t recent(Time now) const;

    mutable std::mutex m_mutex;                          ///< for all of it
    std::deque<std::pair<Time, std::string>> m_refusals; ///< the last ones, oldest first
    bool m_takesLatin1 = false;
};

} // namespace base
