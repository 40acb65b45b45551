#include "settings/host_name.h"

#include <QRegularExpression>
#include <QStringList>

#include <cctype>

namespace zelvaro {

namespace {

/// Where the login ends: at the last "@" of the authority. A password with a "/" in it, which
/// should have been encoded, makes the authority look like a host with a port that is no number.
int endOfLogin(const QString &text, int start, bool hasScheme)
{
    static const QRegularExpression pathStart(QStringLiteral("[/?#]"));
    static const QRegularExpression hostWithPort(QStringLiteral("^[^:]*(:\\d*)?$|^\\[.*"));
    const int path = text.indexOf(pathStart, start);
    const QString authority = text.mid(start, path < 0 ? -1 : path - start);
    const int at = authority.lastIndexOf(QLatin1Char('@'));
    if (at >= 0) {
        // A UID of a maker's own library may hold an "@"; a login has a password.
        const bool isLogin = hasScheme || authority.left(at).contains(QLatin1Char(':'));
        return isLogin ? start + at : -1;
    }
    return hasScheme && !hostWithPort.match(authority).hasMatch()
               ? text.indexOf(QLatin1Char('@'), start)
               : -1;
}

QString percentDecoded(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    QByteArray decoded;
    for (int i = 0; i < bytes.size(); ++i) {
        const bool encoded = bytes.at(i) == '%' && i + 2 < bytes.size() &&
                             std::isxdigit(uchar(bytes.at(i + 1))) &&
                             std::isxdigit(uchar(bytes.at(i + 2)));
        decoded += encoded ? QByteArray::fromHex(bytes.mid(i + 1, 2)) : bytes.mid(i, 1);
        i += encoded ? 2 : 0;
    }
    return QString::fromUtf8(decoded);
}

QString percentEncoded(QChar c)
{
    return QStringLiteral("%%1").arg(QString::number(c.unicode(), 16).toUpper(), 2,
                                     QLatin1Char('0'));
}

/// A name between two separators.
QString folderName(QString name)
{
    if (name == QLatin1String(".."))
        return QStringLiteral("_");
    // A "%" that looks like one of ours would make two host names alike.
    static const QRegularExpression forbidden(
        QStringLiteral("[\\x01-\\x1f<>:\"|?*]|%(?=[0-9A-Fa-f]{2})|[. ]$"));
    static const QRegularExpression device(
        QStringLiteral("^(con|prn|aux|nul|com[1-9]|lpt[1-9])(\\.|$)"),
        QRegularExpression::CaseInsensitiveOption);
    QString safe;
    int done = 0;
    for (auto found = forbidden.globalMatch(name); found.hasNext();) {
        const int place = found.next().capturedStart();
        safe += name.mid(done, place - done) + percentEncoded(name.at(place));
        done = place + 1;
    }
    safe += name.mid(done);
    return device.match(safe).hasMatch() ? percentEncoded(safe.at(0)) + safe.mid(1) : safe;
}

} // namespace

std::optional<HostLogin> loginInHostName(const QString &hostname)
{
    const int scheme = hostname.indexOf(QLatin1String("://"));
    const int start = scheme < 0 ? 0 : scheme + 3;
    const int end = endOfLogin(hostname, start, scheme >= 0);
    if (end < 0)
        return {};
    const QString login = hostname.mid(start, end - start);
    const int colon = login.indexOf(QLatin1Char(':'));
    return HostLogin{hostname.left(start) + hostname.mid(end + 1),
                     percentDecoded(login.left(colon)),
                     colon < 0 ? QString() : percentDecoded(login.mid(colon + 1))};
}

QString withoutLogin(const QString &hostname)
{
    const std::optional<HostLogin> login = loginInHostName(hostname);
    return login ? login->hostname : hostname;
}

QString folderOfHost(const QString &hostname)
{
    QString folder = withoutLogin(hostname);
    folder.remove(QChar(QChar::Null)).replace(QLatin1Char('\\'), QLatin1Char('/'));
    QStringList names = folder.split(QLatin1Char('/'));
    for (QString &name : names)
        name = folderName(name);
    return names.join(QLatin1Char('/'));
}

} // namespace zelvaro
