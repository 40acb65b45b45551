#pragma once

#include "platform/onvif/soap_client.h"

namespace ndcp {

/// How long the parts of a configuration request may take, in milliseconds.
struct ConfigurationTimes
{
    onvif::SoapOptions soap;      ///< for one exchange with the device
    unsigned search = 3000;       ///< for one search for its UID
    unsigned look = 30'000;       ///< until a device that was moved must be found at its new place
    unsigned lookQuestion = 3000; ///< for one exchange while it is looked for
    unsigned settle = 2000; ///< until one that has accepted and continues as before is believed
    unsigned pause = 1000;  ///< between two rounds of looking
};

} // namespace ndcp
