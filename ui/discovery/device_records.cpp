#include "ui/discovery/device_records.h"

#include <QHostAddress>

#include <algorithm>
#include <cstring>

namespace zelvaro {

ndcp_device *DeviceRecords::append(const ndcp_device &device)
{
    if (device.uid[0] == 0)
        return nullptr;
    return m_records.emplace_back(std::make_unique<ndcp_device>(device)).get();
}

void DeviceRecords::merge(const ndcp_device &device)
{
    const auto known =
        std::find_if(m_records.begin(), m_records.end(), [&device](const auto &record) {
            return std::strncmp(record->uid, device.uid, sizeof record->uid) == 0;
        });
    if (known == m_records.end()) {
        append(device);
        return;
    }
    ndcp_device &record = **known;
    ndcp_device fresh = device;
    std::memcpy(fresh.username, record.username, sizeof fresh.username);
    std::memcpy(fresh.password, record.password, sizeof fresh.password);
    record = fresh;
}

QString addressText(quint32 address)
{
    return QHostAddress(address).toString();
}

QString macText(const ndcp_device &device)
{
    const uint8_t *mac = device.mac;
    return QString::asprintf("%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3],
                             mac[4], mac[5]);
}

int httpPort(const ndcp_device &device)
{
    return static_cast<quint16>(device.http_port);
}

QString webPage(const ndcp_device &device)
{
    return QStringLiteral("http://%1:%2").arg(addressText(device.ip)).arg(httpPort(device));
}

} // namespace zelvaro
