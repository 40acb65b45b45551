#include "app/disk_watch.h"

#include "camera/camera.h"
#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "ui/common/duration_text.h"

#include <QFileInfo>
#include <QLocale>
#include <QRunnable>
#include <QStorageInfo>
#include <QThreadPool>

#include <mutex>

namespace zelvaro {

namespace {

constexpr int interval = 10'000;             // milliseconds
constexpr qint64 littleRoom = 1'000'000'000; // bytes
constexpr int leastRate = 1000;              // bits per second: a stream that has just begun

/// Bits per second of all recordings that are being written.
qint64 recordingRate()
{
    qint64 rate = 0;
    const CCameraList &cameras = CCameraList::instance();
    for (int i = 0; i < cameras.count(); ++i)
        if (cameras.at(i)->has_player() && cameras.at(i)->is_writing())
            rate += cameras.at(i)->get_bit_rate();
    return rate;
}

/// A task of the pool that runs a function.
class Task final : public QRunnable
{
public:
    explicit Task(std::function<void()> work) : m_work(std::move(work)) {}
    void run() override { m_work(); }

private:
    std::function<void()> m_work;
};

} // namespace

/// Where a thread of the pool leaves its answer, which may come when nobody waits any more.
struct DiskWatch::Answers
{
    std::mutex mutex;
    DiskWatch *reader; // null once it is gone; protected by mutex
};

qint64 freeBytes(const QString &folder)
{
    QFileInfo place(folder);
    while (!place.exists() && !place.isRoot())
        place.setFile(place.path());
    const QStorageInfo storage(place.absoluteFilePath());
    return storage.isValid() ? storage.bytesAvailable() : -1;
}

DiskWatch::DiskWatch() : m_answers(std::make_shared<Answers>())
{
    m_answers->reader = this;
    connect(&m_timer, &QTimer::timeout, this, &DiskWatch::look);
    connect(&CameraSettings::instance(), &CameraSettings::albumPathChanged, this, &DiskWatch::look);
    m_timer.start(interval);
    look();
}

DiskWatch::~DiskWatch()
{
    const std::lock_guard lock(m_answers->mutex);
    m_answers->reader = nullptr;
}

void DiskWatch::look()
{
    const QString folder = CameraSettings::instance().albumPath();
    if (m_asked || folder.isEmpty())
        return;
    m_asked = true;
    QThreadPool::globalInstance()->start(new Task([ask = m_ask, folder, answers = m_answers] {
        const qint64 bytes = ask(folder);
        const std::lock_guard lock(answers->mutex);
        if (DiskWatch *reader = answers->reader)
            QMetaObject::invokeMethod(
                reader, [reader, bytes] { reader->take(bytes); }, Qt::QueuedConnection);
    }));
}

void DiskWatch::take(qint64 bytes)
{
    m_asked = false;
    QString notice;
    if (bytes >= 0 && bytes < littleRoom) {
        const QString room = QLocale().formattedDataSize(bytes, 0, QLocale::DataSizeSIFormat);
        const qint64 rate = recordingRate();
        notice = rate < leastRate
                     ? tr("The disk of the album has %1 left.").arg(room)
                     : tr("The disk of the album has %1 left. The running recordings fit for %2.")
                           .arg(room, durationText(bytes * 8 / rate));
    }
    if (m_notice == notice)
        return;
    m_notice = notice;
    emit noticeChanged();
}

} // namespace zelvaro
