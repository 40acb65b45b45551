#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>

namespace zelvaro {

/// Free bytes of the file system that holds the folder, or would once it is made; negative when
/// that cannot be told. May wait for the disk.
qint64 freeBytes(const QString &folder);

/// Looks every 10 s, and when the album is another folder, how much room the album has left. The
/// disk is asked on a thread of the global pool: one that sleeps or is gone holds up nothing. GUI
/// thread only.
class DiskWatch : public QObject
{
    Q_OBJECT

public:
    /// Bytes; runs on another thread.
    using Ask = std::function<qint64(const QString &folder)>;

    DiskWatch();
    ~DiskWatch() override;

    /// Tests ask another disk.
    void setAsk(Ask ask) { m_ask = std::move(ask); }

    /// What to tell the user; empty while there is room.
    const QString &notice() const { return m_notice; }
    /// Asks now, unless an answer is outstanding.
    void look();

signals:
    void noticeChanged();

private:
    struct Answers;

    void take(qint64 bytes);

    Ask m_ask = freeBytes;
    std::shared_ptr<Answers> m_answers;
    QTimer m_timer;
    bool m_asked = false; // an answer is outstanding
    QString m_notice;
};

} // namespace zelvaro
