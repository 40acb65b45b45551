#pragma once

#include <optional>
#include <string>

namespace base {

/// User name and password of a device, UTF-8. Without a user name requests go out unsigned.
struct Credentials
{
    std::string user;
    std::string password;

    bool operator==(const Credentials &) const = default;
};

/// The same in ISO 8859-1, as devices from before RFC 7616 expect a login; nullopt where that is no
/// other login, or there is none.
[[nodiscard]] std::optional<Credentials> latin1Of(const Credentials &credentials);

} // namespace base
