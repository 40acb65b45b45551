#pragma once

#include <cstdint>
#include <memory>

/// Listens on 127.0.0.1 with TLS, under a certificate that it has signed itself, and passes on what
/// comes to another port and back.
class TlsFront
{
public:
    enum class Key
    {
        First,
        Second
    };

    /// port: 0 for any.
    explicit TlsFront(int targetPort, Key key = Key::First, int port = 0);
    ~TlsFront();
    TlsFront(const TlsFront &) = delete;
    TlsFront &operator=(const TlsFront &) = delete;

    int port() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};
