#include "app/single_instance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QLockFile>
#include <QLoggingCategory>
#include <QStandardPaths>
#include <QTimer>

namespace zelvaro {

namespace {

Q_LOGGING_CATEGORY(lcInstance, "zelvaro.instance")

constexpr char request[] = "show\n";
constexpr char reply[] = "shown\n";
constexpr int clientTimeout = 5000; // milliseconds for a client to say what it wants
constexpr int hashLength = 20;      // the path of a socket has at most 107 bytes

/// The same for every way to write the folder's path.
QString socketPathFor(const QString &settingsFolder)
{
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (runtime.isEmpty())
        return {};
    QDir().mkpath(settingsFolder); // a folder that is not there has no canonical path
    const QString canonical = QFileInfo(settingsFolder).canonicalFilePath();
    const QByteArray key = (canonical.isEmpty() ? settingsFolder : canonical).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha256);
    return QStringLiteral("%1/zelvaro-%2")
        .arg(runtime, QString::fromLatin1(hash.toHex().left(hashLength)));
}

int remaining(const QDeadlineTimer &deadline)
{
    return static_cast<int>(deadline.remainingTime());
}

enum class Answer
{
    NobodyThere,
    Silent,
    Shown
};

Answer ask(const QString &path, std::chrono::milliseconds patience)
{
    const QDeadlineTimer deadline(patience);
    QLocalSocket socket;
    socket.connectToServer(path);
    if (!socket.waitForConnected(remaining(deadline)))
        return socket.error() == QLocalSocket::SocketTimeoutError ? Answer::Silent
                                                                  : Answer::NobodyThere;
    socket.write(request);
    while (!socket.canReadLine()) {
        if (socket.waitForReadyRead(remaining(deadline)))
            continue;
        // The running program closes the connection when it ends.
        return socket.state() == QLocalSocket::ConnectedState ? Answer::Silent
                                                              : Answer::NobodyThere;
    }
    return socket.readLine() == reply ? Answer::Shown : Answer::Silent;
}

} // namespace

SingleInstance::SingleInstance(const QString &settingsFolder, QObject *parent)
    : QObject(parent)
    , m_path(socketPathFor(settingsFolder))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::accept);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::handOver(std::chrono::milliseconds patience)
{
    if (m_path.isEmpty())
        return false;
    // Of two that start together, the later waits until the earlier listens.
    QLockFile lock(m_path + QStringLiteral(".lock"));
    lock.setStaleLockTime(static_cast<int>(2 * patience.count()));
    if (!lock.tryLock(static_cast<int>(2 * patience.count())))
        qCWarning(lcInstance) << "cannot lock" << m_path;
    switch (ask(m_path, patience)) {
    case Answer::Shown:
        return true;
    case Answer::Silent:
        qCWarning(lcInstance) << "a program with these settings runs already and does not answer; "
                                 "this one starts all the same";
        break;
    case Answer::NobodyThere:
        break;
    }
    listen();
    return false;
}

void SingleInstance::close()
{
    m_server.close();
}

void SingleInstance::listen()
{
    QLocalServer::removeServer(m_path);
    if (!m_server.listen(m_path))
        qCWarning(lcInstance) << "cannot listen on" << m_path << m_server.errorString();
}

void SingleInstance::accept()
{
    while (QLocalSocket *client = m_server.nextPendingConnection()) {
        client->setReadBufferSize(sizeof request);
        connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
        connect(
            client, &QLocalSocket::readyRead, this, [this, client] { read(*client); });
        QTimer::singleShot(clientTimeout, client, [client] { client->abort(); });
        read(*client);
    }
}

void SingleInstance::read(QLocalSocket &client)
{
    if (!client.canReadLine()) {
        if (client.bytesAvailable() >= client.readBufferSize())
            client.abort();
        return;
    }
    if (client.readLine() != request) {
        client.abort();
        return;
    }
    emit activated();
    client.write(reply);
    client.disconnectFromServer();
}

} // namespace zelvaro
