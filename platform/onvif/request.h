#pragma once

#include <functional>
#include <memory>

namespace onvif {

/// A request to the network that is not answered yet. Destroying it cancels: its callback then
/// never runs. It may be destroyed inside its own callback, and only on the thread that runs the
/// main context it was made for.
class Request
{
public:
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;
    virtual ~Request() = default;

protected:
    Request() = default;
};

using RequestPtr = std::unique_ptr<Request>;

} // namespace onvif
