#include "app/main_form.h"
#include "resources/resources.h"
#include "settings/camera_list.h"
#include "settings/camera_settings.h"

#include <QApplication>
#include <QTextCodec>
#include <QThreadPool>
#include <QTranslator>

#include <memory>

namespace {

constexpr int kMostBackgroundTasks = 64;

// One after the other: what comes later needs what came before, and goes before it at the end.
int runProgram(QApplication &application)
{
    QTranslator translator; // stays empty: the user interface shows the source texts
    QCoreApplication::installTranslator(&translator);

    CameraSettings &settings = CameraSettings::instance();
    CCameraList &cameras = CCameraList::instance();
    settings.load();
    cameras.startSessions(settings);

    QTextCodec::setCodecForLocale(QTextCodec::codecForName("System"));
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &cameras, &CCameraList::closing);

    auto mainForm = std::make_unique<CMainForm>();
    setPageHost(mainForm.get());
    mainForm->show();
    const int result = QApplication::exec();

    mainForm.reset();
    cameras.destroyAll();
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    // The stream library draws on child windows of its own.
    QCoreApplication::setAttribute(Qt::AA_NativeWindows, true);
    QCoreApplication::setAttribute(Qt::AA_X11InitThreads, true);
    QThreadPool::globalInstance()->setMaxThreadCount(kMostBackgroundTasks);
    // The settings folder is named by it. No organisation: the folder stands right in the user's.
    QCoreApplication::setApplicationName(QStringLiteral("Zelvaro"));

    QApplication application(argc, argv);
    zelvaro::initResources();
    zelvaro::applyLook();
    return runProgram(application);
}
