#include "tests/gallery/stage.h"

#include "app/main_form.h"
#include "camera/camera.h"
#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/fakes/fake_ndcp.h"
#include "tests/gallery/motif.h"
#include "ui/common/album_files.h"
#include "ui/live/video_frame.h"

#include <QApplication>
#include <QDir>
#include <QHelpEvent>
#include <QPainter>
#include <QUuid>
#include <QtTest>

namespace gallery {

namespace {

constexpr int deadline = 30000; // milliseconds

const char *const places[] = {"Front door", "Garage",  "Garden",  "Living room", "Driveway",
                              "Workshop",   "Terrace", "Kitchen", "Hall",        "Attic"};

class Painter : public QObject
{
public:
    Painter(QObject *parent, QImage picture) : QObject(parent), m_picture(std::move(picture)) {}

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() != QEvent::Paint)
            return false;
        auto *surface = static_cast<QWidget *>(watched);
        QPainter painter(surface);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(surface->rect(), m_picture);
        return true;
    }

private:
    const QImage m_picture;
};

std::shared_ptr<fake_cammgr::Player> playerOf(const CCamera *camera)
{
    return fake_cammgr::player(camera->hostname().toStdString());
}

void answerProbe(CCamera *camera, const std::function<void(fake_cammgr::Player &)> &answer)
{
    QSignalSpy reports(camera, &CCamera::signalStateReport);
    answer(*playerOf(camera));
    QTRY_VERIFY_WITH_TIMEOUT(!reports.isEmpty(), deadline);
    QCoreApplication::sendPostedEvents();
}

void save(const QImage &picture, const QString &file)
{
    if (!QDir().mkpath(QFileInfo(file).path()) || !picture.save(file, "JPG", 92))
        qFatal("cannot write %s", qPrintable(file));
}

QDateTime timeOf(int file)
{
    return QDateTime(QDate(2024, 3, 5), QTime(7, 8, 9)).addSecs(file * 4567);
}

} // namespace

Stage::Stage()
{
    fake_cammgr::reset();
    fake_cammgr::setDefaults({});
    fake_ndcp::reset();
    CameraSettings::instance().load();
    CameraSettings::instance().setAlbumPath(m_home.path() + QStringLiteral("/Album"));
}

Stage::~Stage()
{
    while (!m_dialogs.empty())
        m_dialogs.pop_back();
    m_form.reset();
    CCameraList::instance().closing();
    CCameraList::instance().destroyAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void Stage::addCamera(const QString &name, const QString &uid)
{
    const QUuid made = QUuid::createUuidV5(QUuid(), QString::number(m_registered++));
    CameraSettings::instance().addRecord(
        CAMERA_TYPE_P2P, uid.isEmpty() ? made.toString(QUuid::WithoutBraces) : uid,
        QStringLiteral("admin"), QStringLiteral("secret"), name, true);
}

void Stage::addCameras(int count)
{
    constexpr int placeCount = int(std::size(places));
    for (int i = 0; i < count; ++i) {
        const QString place = QLatin1String(places[i % placeCount]);
        addCamera(i < placeCount ? place
                                 : QStringLiteral("%1 %2").arg(place).arg(i / placeCount + 1));
    }
}

QString Stage::folder(int index) const
{
    const CameraSettings &settings = CameraSettings::instance();
    return settings.cameraFolder(settings.at(index)->hostname);
}

void Stage::addThumbnail(int index)
{
    save(motif(index, {320, 180}), folder(index) + QStringLiteral("/thumb.jpeg"));
}

void Stage::addPhotos(int index, int count)
{
    for (int i = 0; i < count; ++i)
        save(motif(index + i, {1280, 720}), zelvaro::photoFile(folder(index), timeOf(i)));
}

void Stage::addClips(int index, int count)
{
    for (int i = 0; i < count; ++i) {
        const QString clip = zelvaro::clipFile(zelvaro::recordingBase(folder(index), timeOf(i)));
        save(motif(index + i + 1, {640, 360}), zelvaro::clipStill(clip));
        QFile file(clip);
        if (!file.open(QIODevice::WriteOnly) || file.write("no video") < 0)
            qFatal("cannot write %s", qPrintable(clip));
    }
}

CMainForm &Stage::open()
{
    CCameraList::instance().startSessions(CameraSettings::instance());
    m_form = std::make_unique<CMainForm>();
    setPageHost(m_form.get());
    m_form->show();
    return *m_form;
}

CCamera *Stage::camera(int index) const
{
    return CCameraList::instance().at(index);
}

void Stage::connectCamera(int index)
{
    answerProbe(
        camera(index), [](fake_cammgr::Player &player) { player.probeOk(); });
}

void Stage::connectAll()
{
    for (int i = 0; i < CCameraList::instance().count(); ++i)
        connectCamera(i);
}

void Stage::refuseCamera(int index)
{
    answerProbe(
        camera(index),
        [](fake_cammgr::Player &player) { player.probeFailed(CAMMGR_ERROR_REFUSED); });
}

void Stage::failCamera(int index)
{
    answerProbe(
        camera(index), [](fake_cammgr::Player &player) { player.probeFailed(); });
}

void Stage::report()
{
    for (int i = 0; i < CCameraList::instance().count(); ++i) {
        emit camera(i)->signalStateReport();
        QCoreApplication::sendPostedEvents();
    }
}

void Stage::runStreams()
{
    // The first report starts the stream, the second lays it out, the third shows its rate.
    for (int reports = 0; reports < 3; ++reports)
        report();
    int number = 0;
    for (const CVideoFrame *frame : m_form->findChildren<CVideoFrame *>())
        if (frame->isVisible() && frame->renderSurface())
            paintOver(frame->renderSurface(), motif(number++, {640, 360}));
}

void Stage::paintOver(QWidget *surface, const QImage &picture)
{
    surface->installEventFilter(new Painter(surface, picture));
    surface->update();
}

Subject Stage::tipOf(QWidget &widget)
{
    // Whatever happens to the window takes a tool tip away.
    m_form->activateWindow();
    if (!QTest::qWaitForWindowActive(m_form.get()))
        return {};
    QCoreApplication::processEvents();
    const QPoint middle = widget.rect().center();
    QHelpEvent rest(QEvent::ToolTip, middle, widget.mapToGlobal(middle));
    QCoreApplication::sendEvent(&widget, &rest);
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window->inherits("QTipLabel") && window->isVisible())
            return {window, {}};
    return {};
}

void Stage::click(const char *page, const char *button)
{
    auto *widget = find<QWidget>(page)->findChild<QWidget *>(QLatin1String(button));
    if (!widget)
        qFatal("no button %s on %s", button, page);
    QTest::mouseClick(widget, Qt::LeftButton);
}

QObject *Stage::findWidget(const char *name, const QMetaObject *type) const
{
    for (QWidget *widget : m_form->findChildren<QWidget *>(QLatin1String(name)))
        if (type->cast(widget))
            return widget;
    qFatal("no %s named %s", type->className(), name);
}

} // namespace gallery
