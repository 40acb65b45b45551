#pragma once

#include <QString>
#include <QStringList>

/// Command requests to a camera, in the form of small HTTP GET requests, and their replies.
namespace zelvaro {

/// One request. Parameter names and values go in as they are, unescaped; both lists have the same
/// length. User name and password go in as Basic credentials (RFC 7617, UTF-8).
QString build_request(const QString &username, const QString &password, const QString &command,
                      const QStringList &params, const QStringList &values);

QString sys_reboot_request(const QString &username, const QString &password);
QString get_auto_reboot_request(const QString &username, const QString &password);
QString get_storage_alarm_record_request(const QString &username, const QString &password);
QString get_storage_alarm_snapshot_request(const QString &username, const QString &password);
QString get_email_alarm_sending_request(const QString &username, const QString &password);
/// window: 1 to 4.
QString get_motion_request(const QString &username, const QString &password, int window);
/// values: window, enable, left, top, right, bottom, threshold, sensitivity, in this order.
QString set_motion_request(const QString &username, const QString &password,
                           const QStringList &values);

/// What a camera answered to one request.
struct CommandReply
{
    int code = -1;      ///< 0 when the first line is "000 Success", else -1
    QStringList keys;   ///< of the lines "key=value", in their order; empty when the code is -1
    QStringList values; ///< parallel to keys
};

CommandReply parse_reply(const QString &text);

} // namespace zelvaro
