#pragma once

namespace camsim {

/// Thrown inside the ONVIF service when an argument is wrong; becomes a SOAP fault there.
struct OnvifFault
{
    const char *code; ///< second subcode, "ter:..."
    const char *reason;
};

} // namespace camsim
