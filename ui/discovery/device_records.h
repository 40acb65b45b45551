#pragma once

#include "platform/ndcp/ndcp.h"

#include <QMetaType>
#include <QString>

#include <memory>
#include <vector>

Q_DECLARE_METATYPE(ndcp_device *)

namespace zelvaro {

/// Copies of the records that a search found, in the order of their first answer. A record keeps
/// its address until clear(), so that list rows may refer to it. GUI thread only.
class DeviceRecords
{
public:
    /// Appends a copy. Null, without a copy, for a record without a UID.
    ndcp_device *append(const ndcp_device &device);

    /// Overwrites the kept record with the same UID, but for its user name and password, which
    /// the user typed; appends a copy where there is none.
    void merge(const ndcp_device &device);

    void clear() { m_records.clear(); }

    const std::vector<std::unique_ptr<ndcp_device>> &all() const { return m_records; }

private:
    std::vector<std::unique_ptr<ndcp_device>> m_records;
};

/// "192.168.1.20"
QString addressText(quint32 address);
/// "00:1A:2B:3C:4D:5E"
QString macText(const ndcp_device &device);
/// The device's HTTP port, 0 to 65535.
int httpPort(const ndcp_device &device);
/// "http://192.168.1.20:80"
QString webPage(const ndcp_device &device);

} // namespace zelvaro
