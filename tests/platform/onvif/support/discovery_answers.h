#pragma once

#include <string>
#include <vector>

/// What a test device says in a ProbeMatch or ResolveMatch.
struct AnnouncedDevice
{
    std::string endpoint = "urn:uuid:4fa94c7c-8f6b-4c57-9a55-3f1d50e6a101";
    std::string xaddrs = "http://127.0.0.1:8080/onvif/device_service";
    std::string scopes = "onvif://www.onvif.org/name/Door "
                         "onvif://www.onvif.org/hardware/ZC-1 "
                         "onvif://www.onvif.org/location/Hall";
    std::string types = "dn:NetworkVideoTransmitter tds:Device";
};

/// "ProbeMatches" or "ResolveMatches" to the message with this identifier.
std::string discoveryAnswer(const std::string &kind, const std::string &relatesTo,
                            const std::vector<AnnouncedDevice> &devices);

/// The identifier of a Probe or Resolve, as in the message.
std::string messageIdOf(const std::string &datagram);
