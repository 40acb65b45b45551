#include "camera/command_channel.h"

#include "camera/developer_check.h"

#include <algorithm>

namespace zelvaro {

QString build_request(const QString &username, const QString &password, const QString &command,
                      const QStringList &params, const QStringList &values)
{
    ZELVARO_CHECK(params.length() == values.length(), "Camera");
    QString request = QStringLiteral("GET /form/") + command;
    const int count = std::min(params.length(), values.length());
    for (int i = 0; i < count; ++i)
        request += QLatin1Char(i == 0 ? '?' : '&') + params[i] + QLatin1Char('=') + values[i];
    const QByteArray credentials = (username + QLatin1Char(':') + password).toUtf8().toBase64();
    return request + QStringLiteral(" HTTP/1.1\r\nAuthorization: Basic ") +
           QLatin1String(credentials) + QStringLiteral("\r\n\r\n");
}

QString sys_reboot_request(const QString &username, const QString &password)
{
    return build_request(username, password, QStringLiteral("sysReboot"), {}, {});
}

QString get_auto_reboot_request(const QString &username, const QString &password)
{
    return build_request(username, password, QStringLiteral("getAutoReboot"), {}, {});
}

QString get_storage_alarm_record_request(const QString &username, const QString &password)
{
    return build_request(username, password, QStringLiteral("getStorageAlarmRecord"), {}, {});
}

QString get_storage_alarm_snapshot_request(const QString &username, const QString &password)
{
    return build_request(username, password, QStringLiteral("getStorageAlarmSnapshot"), {}, {});
}

QString get_email_alarm_sending_request(const QString &username, const QString &password)
{
    return build_request(username, password, QStringLiteral("getEmailAlarmSending"), {}, {});
}

QString get_motion_request(const QString &username, const QString &password, int window)
{
    ZELVARO_CHECK((window > 0) && (window < 5), "Camera");
    return build_request(username, password, QStringLiteral("getMotion"),
                         {QStringLiteral("WINDOW")}, {QString::number(window)});
}

QString set_motion_request(const QString &username, const QString &password,
                           const QStringList &values)
{
    static const QStringList params{QStringLiteral("WINDOW"),    QStringLiteral("ENABLE"),
                                    QStringLiteral("LEFT"),      QStringLiteral("TOP"),
                                    QStringLiteral("RIGHT"),     QStringLiteral("BOTTOM"),
                                    QStringLiteral("THRESHOLD"), QStringLiteral("SENSITIVITY")};
    return build_request(username, password, QStringLiteral("setMotion"), params, values);
}

CommandReply parse_reply(const QString &text)
{
    const QStringList lines = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    CommandReply reply;
    if (lines.isEmpty() || lines.first() != QLatin1String("000 Success"))
        return reply;
    reply.code = 0;
    for (int i = 1; i < lines.length(); ++i) {
        const QStringList parts = lines[i].split(QLatin1Char('='));
        if (parts.length() == 2) {
            reply.keys << parts[0];
            reply.values << parts[1];
        }
    }
    return reply;
}

} // namespace zelvaro
