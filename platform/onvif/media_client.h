#pragma once

#include "platform/onvif/media_message.h"
#include "platform/onvif/request.h"
#include "platform/onvif/soap_client.h"

#include <functional>
#include <string>
#include <vector>

namespace onvif {

/// A media service of one device (ONVIF Media 1 or 2). Thread and cancelling as for SoapClient,
/// which must outlive it.
class MediaClient
{
public:
    /// mediaService: as returned by DeviceClient::mediaServices.
    MediaClient(SoapClient &soap, std::string mediaService, MediaVersion version);

    /// See parseProfiles.
    [[nodiscard]] RequestPtr
    profiles(std::function<void(SoapStatus, std::vector<MediaProfile>)> done);

    /// Address of a profile's stream, held to the device's host (see streamAtHost).
    [[nodiscard]] RequestPtr streamUri(const std::string &profileToken,
                                       std::function<void(SoapStatus, std::string)> done);

    /// Address of a profile's still picture, held to the device's host (see serviceAtDevice).
    [[nodiscard]] RequestPtr snapshotUri(const std::string &profileToken,
                                         std::function<void(SoapStatus, std::string)> done);

    /// Asks for a key frame now.
    [[nodiscard]] RequestPtr setSynchronizationPoint(const std::string &profileToken,
                                                     std::function<void(SoapStatus)> done);

private:
    [[nodiscard]] std::string action(const char *name) const;

    SoapClient &m_soap;
    std::string m_service;
    MediaVersion m_version;
};

} // namespace onvif
