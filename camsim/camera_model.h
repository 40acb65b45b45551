#pragma once

#include "camsim/encoder.h"

#include <ctime>
#include <string>
#include <vector>

namespace camsim {

/// The network set-up of a camera, as ONVIF reads and writes it.
struct NetworkState
{
    std::string address;
    int prefix = 8; ///< length of the subnet mask
    bool dhcp = true;
    std::string gateway;
    bool dnsFromDhcp = true;
    std::vector<std::string> dns;
    int httpPort = 0;
    int rtspPort = 0;
    std::string hostname;

    bool operator==(const NetworkState &) const = default;
};

/// The identity of a camera.
struct Identity
{
    std::string uid; ///< 36 characters
    std::string mac; ///< "02:5a:..."
    std::string name;
    std::string location;
    std::string hardware = "CS-720";
    std::string firmware = "1.0";
    std::string serial;
};

enum class StreamKind
{
    Main,
    Sub
};

/// The camera as seen by the ONVIF service, the command requests and discovery. Main thread.
class CameraModel
{
public:
    enum class Change
    {
        Refused,
        Applied,
        AfterReboot
    };

    virtual ~CameraModel() = default;

    virtual const Identity &identity() const = 0;
    virtual void setName(const std::string &name) = 0;
    virtual void setLocation(const std::string &location) = 0;

    /// The set-up as it was written last, also while it waits for a reboot.
    virtual const NetworkState &network() const = 0;
    /// Takes the new set-up; it takes effect a moment later, so that the answer still gets out.
    virtual Change setNetwork(const NetworkState &wanted) = 0;
    /// The address that the camera has from its router when none is assigned by hand.
    virtual std::string dhcpAddress() const = 0;

    virtual std::string user() const = 0;
    virtual std::string password() const = 0;
    /// The camera's own clock, which may go wrong.
    virtual std::time_t clock() const = 0;
    virtual void reboot() = 0;

    virtual VideoSettings video(StreamKind stream) const = 0;
    virtual bool hasAudio() const = 0;
    virtual std::string streamUri(StreamKind stream) const = 0;
    virtual void requestKeyFrame(StreamKind stream) = 0;
    /// What the stream shows now, as a JPEG; empty when it cannot be made.
    virtual std::string snapshot(StreamKind stream) const = 0;
    /// "http://address:port/onvif/" and the service's name, where the camera answers now.
    virtual std::string serviceUri(const std::string &service) const = 0;
};

} // namespace camsim
