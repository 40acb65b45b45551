#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

#include <chrono>

class QLocalSocket;

namespace zelvaro {

/// One running program for each user and settings folder: two would overwrite each other's settings
/// and log in to every camera twice. The first listens on a local socket in the user's runtime
/// folder; a later one makes it show its window and ends. GUI thread only.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// settingsFolder: programs with other settings do not meet. It need not exist.
    explicit SingleInstance(const QString &settingsFolder, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// Hands over to the running program, or becomes the running program. One that does not
    /// answer within the patience, because it hangs, is passed over and replaced; so is a socket
    /// that a killed one left. Blocks for at most three times the patience.
    /// @return whether another program has shown its window, so that this one should end
    bool handOver(std::chrono::milliseconds patience = std::chrono::seconds(3));

    /// Stops listening, so that a program started while this one ends becomes the running one.
    void close();

    /// Path of the socket; empty where the system has no runtime folder for the user, and then
    /// every program is the first.
    [[nodiscard]] const QString &socketPath() const { return m_path; }

signals:
    /// Another start requested the window. It gets its answer once the slots have run.
    void activated();

private:
    void listen();
    void accept();
    void read(QLocalSocket &client);

    QString m_path;
    QLocalServer m_server;
};

} // namespace zelvaro
