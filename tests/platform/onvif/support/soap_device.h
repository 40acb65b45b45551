#pragma once

#include "tests/platform/onvif/support/test_context.h"

#include <libsoup/soup.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

/// A device on a local address that answers SOAP requests with what the test has laid down.
class SoapDevice
{
public:
    enum class Guard
    {
        None,
        Digest,         ///< HTTP digest
        Basic,          ///< HTTP basic
        Token,          ///< WS-Security UsernameToken, refusals with HTTP 400 and a fault
        DigestAndToken, ///< requests an HTTP digest, but its accounts work by UsernameToken only
        BareToken,      ///< UsernameToken, refusals with HTTP 400 and no fault
        Unreasonable    ///< refuses everything with HTTP 401 and no challenge
    };

    /// One request as it came in.
    struct Seen
    {
        std::string request; ///< local name of the element in the body
        std::string text;
        std::string authorization; ///< header of that name
        std::string contentType;
    };

    explicit SoapDevice(const TestContext &context, std::string host = "127.0.0.1");
    ~SoapDevice();
    SoapDevice(const SoapDevice &) = delete;
    SoapDevice &operator=(const SoapDevice &) = delete;

    [[nodiscard]] int port() const { return m_port; }
    [[nodiscard]] std::string service() const;

    void guard(Guard guard, const std::string &user, const std::string &password);

    /// Answers a request with the text of a body; "tr2:" before its name tells that of Media 2.
    void answer(const std::string &request, const std::string &body);
    /// Answers with these bytes.
    void answerRaw(const std::string &request, int status, const std::string &text);
    /// Answers with a fault of this subcode and HTTP 400.
    void answerFault(const std::string &request, const std::string &subcode);
    /// Never answers this request.
    void keepSilent(const std::string &request);

    /// How the device reports its clock: by the parts of GetSystemDateAndTime's answer.
    enum class Clock
    {
        Utc,
        LocalOnly, ///< in a zone eight hours ahead of UTC
        WrongUtc,  ///< five hours ahead of the clock that tokens are compared with
        Refused,
    };
    void setClock(Clock clock) { m_clock = clock; }

    /// Seconds that the device's clock is ahead, for tokens and GetSystemDateAndTime.
    void setClockOffset(std::int64_t seconds) { m_clockOffset = seconds; }

    [[nodiscard]] const std::vector<Seen> &seen() const { return m_seen; }
    /// Texts of the requests with this name.
    [[nodiscard]] std::vector<std::string> seen(const std::string &request) const;

    static std::string envelope(const std::string &body);

private:
    struct Reply
    {
        int status = 200;
        std::string text;
        bool isSilent = false;
    };

    static void handle(SoupServer *, SoupServerMessage *message, const char *path, GHashTable *,
                       gpointer self);
    static char *digestPassword(SoupAuthDomain *, SoupServerMessage *, const char *user,
                                gpointer self);
    static gboolean basicPassword(SoupAuthDomain *, SoupServerMessage *, const char *user,
                                  const char *password, gpointer self);
    [[nodiscard]] Reply replyTo(const Seen &request) const;
    [[nodiscard]] bool hasGoodToken(const std::string &text) const;
    [[nodiscard]] char *deviceTime(const char *format, std::int64_t zone) const;
    [[nodiscard]] std::string clockAnswer() const;

    base::GObjectPtr<SoupServer> m_server;
    std::string m_host;
    int m_port = 0;
    Guard m_guard = Guard::None;
    std::string m_user;
    std::string m_password;
    std::map<std::string, Reply> m_replies;
    Clock m_clock = Clock::Utc;
    std::int64_t m_clockOffset = 0;
    std::vector<Seen> m_seen;
    std::vector<base::GObjectPtr<SoupServerMessage>> m_silenced;
};
