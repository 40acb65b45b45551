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
    /// Checks the input field by field and stores it in the record. The message for the user at
    /// the first field that fails, and the record is then as it was. Texts are stored as Latin-1,
    /// cut to their fields.
    static std::optional<QString> store(const NetworkForm &input, ndcp_device &record);
};

/// The mask with every bit above its lowest set bit made 1: a mask with holes is widened, not
/// refused. 0 stays 0.
quint32 contiguousMask(quint32 mask);

} // namespace zelvaro
