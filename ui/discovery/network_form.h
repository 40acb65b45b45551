#pragma once

#include "platform/ndcp/ndcp.h"

#include <QCoreApplication>
#include <QString>

#include <optional>

namespace zelvaro {

/// What the user entered for a device's network configuration. Addresses in host order, 0 when
/// empty or invalid.
struct NetworkForm
{
    QString deviceName;
    QString location;
    QString httpPort;
    bool manualIp = false;
    quint32 ip = 0;
    quint32 mask = 0;
    quint32 gateway = 0;
    bool manualDns = false;
    quint32 dns1 = 0;
    quint32 dns2 = 0;
    QString userName;
    QString password;
};

class NetworkFormCheck
{
    Q_DECLARE_TR_FUNCTIONS(NetworkFormCheck)

public:
    /// Checks the input field by field and stores it in the record. The message for the user at the
    /// first field that fails, and the record is then as it was. Device name and location are
    /// neither checked nor stored where they are unchanged: a device may have a name that could not
    /// be typed here. Texts are cut to their fields.
    /// @param shown what the controls were filled with
    static std::optional<QString> store(const NetworkForm &input, const NetworkForm &shown,
                                        ndcp_device &record);
};

/// The device as described by the record.
NetworkForm networkForm(const ndcp_device &record);

/// Fresh values with what the user has changed: each field of edited that is not as it was shown.
NetworkForm withEdits(NetworkForm fresh, const NetworkForm &shown, const NetworkForm &edited);

/// The mask with every bit above its lowest set bit made 1: a mask with holes is widened, not
/// refused. 0 stays 0.
quint32 contiguousMask(quint32 mask);

} // namespace zelvaro
