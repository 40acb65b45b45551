#include "ui/discovery/network_form.h"

#include "ui/discovery/device_records.h"
#include "ui/discovery/device_text.h"

#include <algorithm>
#include <cctype>

namespace zelvaro {

namespace {

constexpr int longestText = 50; // characters of a device name or location

bool isPrintable(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    return canBeStored(text) && std::all_of(bytes.begin(), bytes.end(), [](char byte) {
               return std::isprint(static_cast<uchar>(byte)) != 0;
           });
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

std::optional<QString> NetworkFormCheck::store(const NetworkForm &input, const NetworkForm &shown,
                                               ndcp_device &record)
{
    const bool hasNewName = input.deviceName != shown.deviceName;
    const bool hasNewLocation = input.location != shown.location;
    if (hasNewName && !isPrintable(input.deviceName))
        return tr("Device Name input invalid!");
    if (hasNewName && input.deviceName.length() > longestText)
        return tr("Device Name is too long!");
    if (hasNewLocation && !isPrintable(input.location))
        return tr("Location input invalid!");
    if (hasNewLocation && input.location.length() > longestText)
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
    if (hasNewName)
        storeField(record.name, input.deviceName);
    if (hasNewLocation)
        storeField(record.location, input.location);
    return std::nullopt;
}

NetworkForm networkForm(const ndcp_device &record)
{
    NetworkForm form;
    form.deviceName = fieldEditText(record.name);
    form.location = fieldEditText(record.location);
    form.httpPort = QString::number(httpPort(record));
    form.manualIp = record.manual_ip != 0;
    form.ip = record.ip;
    form.mask = record.mask;
    form.gateway = record.gateway;
    form.manualDns = record.manual_dns != 0;
    form.dns1 = record.dns1;
    form.dns2 = record.dns2;
    form.userName = fieldEditText(record.username);
    form.password = fieldEditText(record.password);
    return form;
}

NetworkForm withEdits(NetworkForm fresh, const NetworkForm &shown, const NetworkForm &edited)
{
    const auto take = [&](auto... fields) {
        ((fresh.*fields = edited.*fields == shown.*fields ? fresh.*fields : edited.*fields), ...);
    };
    take(&NetworkForm::deviceName, &NetworkForm::location, &NetworkForm::httpPort,
         &NetworkForm::manualIp, &NetworkForm::ip, &NetworkForm::mask, &NetworkForm::gateway,
         &NetworkForm::manualDns, &NetworkForm::dns1, &NetworkForm::dns2, &NetworkForm::userName,
         &NetworkForm::password);
    return fresh;
}

} // namespace zelvaro
