#include "ui/discovery/network_form.h"

#include "ui/discovery/device_records.h"

#include <algorithm>
#include <cctype>

namespace zelvaro {

namespace {

constexpr int longestText = 50; // characters of a device name or location

bool isPrintable(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return std::isprint(static_cast<uchar>(byte)) != 0; });
}

bool hasOnlyDigits(const QString &text)
{
    return std::all_of(
        text.begin(), text.end(),
        [](QChar character) {
            return character >= QLatin1Char('0') && character <= QLatin1Char('9');
        });
}

} // namespace

quint32 contiguousMask(quint32 mask)
{
    int shift = 0;
    while (shift < 32 && (mask << shift) != 0)
        ++shift;
    if (shift == 0)
        return 0;
    return shift == 32 ? 0xFFFFFFFFU : 0xFFFFFFFFU << (32 - shift);
}

std::optional<QString> NetworkFormCheck::store(const NetworkForm &input, ndcp_device &record)
{
    if (!isPrintable(input.deviceName))
        return tr("Device Name input invalid!");
    if (input.deviceName.length() > longestText)
        return tr("Device Name is too long!");
    if (!isPrintable(input.location))
        return tr("Location input invalid!");
    if (input.location.length() > longestText)
        return tr("Location is too long!");
    if (!hasOnlyDigits(input.httpPort))
        return tr("Http Port input invalid!");
    const uint port = input.httpPort.toUInt(); // 0 for an empty or overlong number
    if (port < 1 || port > 65535)
        return tr("Http Port out of range!");

    const quint32 mask = contiguousMask(input.mask);
    if (input.manualIp && (mask == 0 || input.ip == 0))
        return tr("invalid IP or Mask!");

    record.http_port = static_cast<int16_t>(port);
    record.manual_ip = input.manualIp ? 1 : 0;
    record.manual_dns = input.manualDns ? 1 : 0;
    record.ip = input.ip;
    record.mask = mask;
    record.gateway = input.gateway;
    record.dns1 = input.dns1;
    record.dns2 = input.dns2;
    storeField(record.username, input.userName);
    storeField(record.password, input.password);
    storeField(record.name, input.deviceName);
    storeField(record.location, input.location);
    return std::nullopt;
}

} // namespace zelvaro
