#pragma once

#include "platform/base/camera_address.h"

#include <memory>
#include <string>

namespace base {

/**
 * The TLS keys of the cameras. Cameras sign their certificates themselves, so what counts is that a
 * camera goes on using the key it had: the first one that is seen at a host and port is remembered,
 * and another one is refused until the user trusts it. Safe from any thread; no call but setFile()
 * and waitUntilSaved() waits for the disk.
 *
 * The file has a line for each: "host:port" (an IPv6 address in brackets), a blank, and the SHA-256
 * of the public key in hexadecimal digits. Only its owner may read it. Changes are written beside
 * it and renamed, on a thread of their own.
 */
class KnownKeys
{
public:
    enum class Verdict
    {
        Known,
        First,  ///< none was known; it is from now on
        Changed ///< another one is known
    };

    /// That of the process.
    static KnownKeys &instance();
    KnownKeys();
    /// Waits until what was learned is written.
    ~KnownKeys();
    KnownKeys(const KnownKeys &) = delete;
    KnownKeys &operator=(const KnownKeys &) = delete;

    /// Reads the keys of a file and keeps what is learned there; they go before those learned so
    /// far. Lines that cannot be read are passed over. Without a file, and with one that is there
    /// but cannot be read, keys are remembered for as long as the process runs.
    /// @param path bytes of the file system; its folder exists
    /// @return false when the file is there but cannot be read
    bool setFile(const std::string &path);

    /// What to make of a key that a service has shown.
    /// @param digest see publicKeyDigest(); an empty one is never known
    Verdict check(const Endpoint &service, const std::string &digest);

    /// Whether the last key that a service of this host has shown was refused.
    [[nodiscard]] bool hasChanged(const std::string &host) const;
    /// Trusts the keys of this host that were refused, instead of those that were known.
    /// @return whether there were any
    bool trustChanged(const std::string &host);

    void waitUntilSaved();

private:
    struct State;
    static void save(const std::shared_ptr<State> &state);

    std::shared_ptr<State> m_state; ///< shared with the thread that writes
};

} // namespace base
