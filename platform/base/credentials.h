#pragma once

#include <string>

namespace base {

/// User name and password of a device, UTF-8. Without a user name requests go out unsigned.
struct Credentials
{
    std::string user;
    std::string password;

    bool operator==(const Credentials &) const = default;
};

} // namespace base
