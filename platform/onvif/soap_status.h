#pragma once

#include <string>

namespace onvif {

/// How a request to a device ended.
enum class SoapStatus
{
    Ok,
    NoAnswer, ///< not reachable, or silent until the time limit
    Refused,  ///< user name or password not accepted
    Fault     ///< answered with a fault, with another HTTP error or with something unreadable
};

/// User name and password of a device, UTF-8. Without a user name requests go out unsigned.
struct Credentials
{
    std::string user;
    std::string password;

    bool operator==(const Credentials &) const = default;
};

} // namespace onvif
