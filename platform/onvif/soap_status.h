#pragma once

namespace onvif {

/// How a request to a device ended.
enum class SoapStatus
{
    Ok,
    NoAnswer, ///< not reachable, or silent until the time limit
    Refused,  ///< user name or password not accepted
    Fault     ///< answered with a fault, with another HTTP error or with something unreadable
};

} // namespace onvif
