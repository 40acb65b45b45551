// A program that shows an album folder, with a watch on its GUI thread; prints what it measures
// for bench_album.
//
// bench_album_program fill FOLDER COUNT: makes that many photos and as many recordings.
// bench_album_program client|list photos|videos FOLDER: opens the album page of the whole client
// (FOLDER is that of the first registered camera), or a plain icon list of the same files.

#include "app/main_form.h"
#include "app/program.h"
#include "bench/event_wait.h"
#include "bench/gui_watch.h"
#include "ui/album/photo_mgr_form.h"
#include "ui/album/photo_mgr_frame.h"
#include "ui/album/photo_mgr_item_form.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileSystemModel>
#include <QImageReader>
#include <QListView>
#include <QMainWindow>
#include <QPainter>
#include <QPixmapCache>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using bench::wait;

constexpr QSize photoSize(1920, 1080);
constexpr QSize thumbnail(188, 141);
constexpr QSize windowSize(1280, 800);
constexpr int distinctPhotos = 12; // the others are links to these
constexpr auto deadline = 60s;
constexpr auto rest = 1s;
constexpr int wheelSteps = 100;
constexpr auto betweenSteps = 30ms; // as a finger on a wheel

void tell(const char *what, double value)
{
    std::printf("%s %.3f\n", what, value);
    std::fflush(stdout);
}

// --- the files -----------------------------------------------------------------------------------

QImage photo(int number)
{
    QImage image(photoSize, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, image.height());
    sky.setColorAt(0, QColor::fromHsv(number * 360 / distinctPhotos, 120, 240));
    sky.setColorAt(1, Qt::darkGray);
    painter.fillRect(image.rect(), sky);
    // As much detail as a camera's picture has.
    quint32 seed = static_cast<quint32>(number) + 1;
    const auto random = [&seed](int below) {
        seed = seed * 1664525 + 1013904223;
        return static_cast<int>((seed >> 8) % static_cast<quint32>(below));
    };
    for (int i = 0; i < 20'000; ++i) {
        painter.fillRect(random(image.width()), random(image.height()), 2 + random(12),
                         2 + random(12), QColor::fromHsv(random(360), random(120), random(256)));
    }
    return image;
}

int fill(const QString &folder, int count)
{
    namespace fs = std::filesystem;
    QDir().mkpath(folder);
    const fs::path base(folder.toStdString());
    for (int i = 0; i < count; ++i) {
        const QString name =
            QDateTime({2024, 3, 5}, {7, 8, 9}).addSecs(10 * i).toString("yyyyMMdd_hhmmss");
        const fs::path jpg = base / (name + ".jpg").toStdString();
        const fs::path mp4 = base / (name + ".mp4").toStdString();
        const fs::path first = base / ("of" + std::to_string(i % distinctPhotos));
        if (i < distinctPhotos && !photo(i).save(QString::fromStdString(first), "JPG", 90))
            return 1;
        fs::create_hard_link(first, jpg);
        fs::create_hard_link(first, fs::path(mp4).concat(".jpeg"));
        // No list of files looks into a recording.
        fs::create_hard_link(first, mp4);
    }
    tell("files", count);
    return 0;
}

// --- what both programs measure ----------------------------------------------------------------

/// Tells that the view has been painted with files in it, and its thread was free again.
class FirstUse : public QObject
{
public:
    FirstUse(QWidget &viewport, std::function<bool()> hasFiles)
        : QObject(&viewport)
        , m_hasFiles(std::move(hasFiles))
    {
        viewport.installEventFilter(this);
    }

    bool isReady() const { return m_ready; }

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint && m_hasFiles())
            QTimer::singleShot(0, this, [this] { m_ready = true; });
        return false;
    }

private:
    std::function<bool()> m_hasFiles;
    bool m_ready = false;
};

struct Page
{
    std::function<void()> click; ///< opens it
    QWidget *viewport;
    QScrollBar *bar;
    std::function<bool()> hasFiles;
    std::function<bool()> isFilled; ///< all that can be seen has its picture
};

void turnWheel(const Page &page, int steps)
{
    const QPointF centre = page.viewport->rect().center();
    QWheelEvent event(centre, page.viewport->mapToGlobal(centre.toPoint()), {}, {0, -120 * steps},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(page.viewport, &event);
}

void measure(const Page &page)
{
    wait(rest);
    bench::GuiWatch watch;
    const FirstUse use(*page.viewport, page.hasFiles);
    watch.takeLongest();
    const auto asked = Clock::now();
    const auto sinceClick = [asked] {
        return std::chrono::duration<double, std::milli>(Clock::now() - asked).count();
    };
    page.click();
    if (wait(
            deadline, [&use] { return use.isReady(); }, 1ms))
        tell("usable", sinceClick());
    const bench::Block opening = watch.takeLongest();
    tell("open.block", opening.waited);
    tell("open.computed", opening.computed);
    if (wait(deadline, page.isFilled, 1ms))
        tell("filled", sinceClick());
    tell("fill.block", watch.takeLongest().waited);
    tell("opened", 1);
    // Down by notches of the wheel, and then to the end at once.
    for (int i = 0; i < wheelSteps; ++i) {
        turnWheel(page, 1);
        wait(betweenSteps);
    }
    page.bar->setValue(page.bar->maximum());
    wait(rest);
    tell("scroll.block", watch.takeLongest().waited);
    if (wait(deadline, page.isFilled, 1ms))
        tell("scrolled", 1);
    wait(rest);
}

// --- the client ----------------------------------------------------------------------------------

Page clientPage(CMainForm &window, bool videos)
{
    auto *form = window.findChild<CPhotoMgrForm *>(videos ? "pageVideoMgr" : "pagePhotoMgr");
    auto *area = form->findChild<QScrollArea *>("scrollPhotoMgr");
    auto *frame = form->findChild<CPhotoMgrFrame *>();
    const auto inSight = [area, frame] {
        QList<CPhotoMgrItemForm *> tiles;
        const QRect seen(-frame->pos(), area->viewport()->size());
        for (CPhotoMgrItemForm *tile : *frame->tiles())
            if (tile->isVisible() && tile->geometry().intersects(seen))
                tiles << tile;
        return tiles;
    };
    return {
        [&window, videos] {
            window.findChild<QAbstractButton *>(videos ? "btnVideoMgr" : "btnPhotoMgr")->click();
        },
        area->viewport(), area->verticalScrollBar(), [inSight] { return !inSight().isEmpty(); },
        [inSight] {
            const auto tiles = inSight();
            return !tiles.isEmpty() &&
                   std::all_of(tiles.cbegin(), tiles.cend(), [](const auto *tile) {
                       return tile->hasThumbnail() && !tile->isThumbnailDue();
                   });
        }};
}

int runClient(int argc, char **argv, bool videos)
{
    return zelvaro::runProgram(
        argc, argv,
        [videos](CMainForm &window) {
            QTimer::singleShot(
                0, &window,
                [&window, videos] {
                    window.resize(windowSize);
                    measure(clientPage(window, videos));
                    QCoreApplication::exit(0);
                });
        });
}

// --- the plain list ------------------------------------------------------------------------------

/// Files with thumbnails, decoded when the list paints them and kept in Qt's cache.
class ThumbnailModel : public QFileSystemModel
{
public:
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role != Qt::DecorationRole || index.column() != 0 || isDir(index))
            return QFileSystemModel::data(index, role);
        const QString file = filePath(index);
        QPixmap picture;
        if (!QPixmapCache::find(file, &picture)) {
            QImageReader reader(file.endsWith(QLatin1String(".mp4")) ? file + ".jpeg" : file);
            reader.setScaledSize(reader.size().scaled(thumbnail, Qt::KeepAspectRatio));
            picture = QPixmap::fromImage(reader.read());
            QPixmapCache::insert(file, picture);
        }
        m_decoded.insert(file);
        return QIcon(picture);
    }

    bool isDecoded(const QModelIndex &index) const { return m_decoded.contains(filePath(index)); }

private:
    mutable QSet<QString> m_decoded;
};

int runList(int argc, char **argv, bool videos, const QString &folder)
{
    QApplication application(argc, argv);
    ThumbnailModel model;
    model.setFilter(QDir::Files | QDir::NoSymLinks);
    model.setNameFilters({videos ? "*.mp4" : "*.jpg"});
    model.setNameFilterDisables(false);
    QMainWindow window;
    QListView list;
    list.setViewMode(QListView::IconMode);
    list.setResizeMode(QListView::Adjust);
    list.setIconSize(thumbnail);
    list.setGridSize(thumbnail + QSize(32, 50));
    list.setUniformItemSizes(true);
    window.setCentralWidget(&list);
    window.resize(windowSize);
    window.show();
    const auto hasFiles = [&] { return model.rowCount(list.rootIndex()) > 0; };
    const auto isFilled = [&] {
        if (!hasFiles())
            return false;
        for (int row = 0; row < model.rowCount(list.rootIndex()); ++row) {
            const QModelIndex index = model.index(row, 0, list.rootIndex());
            if (list.visualRect(index).intersects(list.viewport()->rect()) &&
                !model.isDecoded(index))
                return false;
        }
        return true;
    };
    QTimer::singleShot(0, &window, [&] {
        measure({[&] {
                     list.setModel(&model);
                     list.setRootIndex(model.setRootPath(folder));
                 },
                 list.viewport(), list.verticalScrollBar(), hasFiles, isFilled});
        QCoreApplication::quit();
    });
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const QString mode = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    if (argc != 4)
        return 2;
    if (mode == QLatin1String("fill"))
        return fill(QString::fromLocal8Bit(argv[2]), std::atoi(argv[3]));
    const bool videos = qstrcmp(argv[2], "videos") == 0;
    const QString folder = QString::fromLocal8Bit(argv[3]);
    argc = 1;
    return mode == QLatin1String("client") ? runClient(argc, argv, videos)
                                           : runList(argc, argv, videos, folder);
}
