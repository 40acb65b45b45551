#include "app/program.h"

#include "app/child_margins.h"
#include "app/connected_screenshot.h"
#include "app/main_form.h"
#include "app/screen_density.h"
#include "camera/camera_list.h"
#include "resources/resources.h"
#include "settings/camera_settings.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextCodec>
#include <QThreadPool>
#include <QTranslator>

#include <memory>

namespace zelvaro {

namespace {

constexpr int mostBackgroundTasks = 64;
constexpr char glIntegration[] = "QT_XCB_GL_INTEGRATION";
// Qt 5.15 hides the name AA_X11InitThreads where deprecated names are off, and still has the bit.
constexpr auto x11InitThreads = static_cast<Qt::ApplicationAttribute>(10);

// Sizes are in logical pixels on every screen and pictures are taken at its density. Factors
// between the whole ones are kept: rounded, the texts would outgrow the pictures around them.
void followScreenDensity()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, isDenseDesktop());
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

/// The file for the requested picture of the window; empty for none. Ends the program on --help,
/// --version and options that it does not know.
QString screenshotFile(const QApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Client for network cameras."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Save a picture of the window as PNG once all cameras are connected, and "
                       "quit."),
        QStringLiteral("file"));
    parser.addOption(screenshot);
    parser.process(application);
    return parser.value(screenshot);
}

// One after the other: each part needs the earlier ones and is destroyed before them.
int runWindow(QApplication &application, const std::function<void(CMainForm &)> &shown)
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
    if (shown)
        shown(*mainForm);
    const int result = QApplication::exec();

    mainForm.reset();
    cameras.destroyAll();
    return result;
}

} // namespace

int runProgram(int &argc, char **argv, const std::function<void(CMainForm &)> &shown)
{
    // The stream library draws on native child windows.
    QCoreApplication::setAttribute(Qt::AA_NativeWindows, true);
    QCoreApplication::setAttribute(x11InitThreads, true);
    followScreenDensity();
    // Nothing here is drawn with OpenGL, and looking for it takes a tenth of the start.
    if (!qEnvironmentVariableIsSet(glIntegration))
        qputenv(glIntegration, "none");
    QThreadPool::globalInstance()->setMaxThreadCount(mostBackgroundTasks);
    // The settings folder is named by it. No organisation: the folder is directly in the user's.
    QCoreApplication::setApplicationName(QStringLiteral("Zelvaro"));
    QCoreApplication::setApplicationVersion(QStringLiteral("1.4"));

    QApplication application(argc, argv);
    declareChildMargins(&application);
    initResources();
    applyLook();
    const QString picture = screenshotFile(application);
    if (picture.isEmpty())
        return runWindow(application, shown);
    return runWindow(application, [&](CMainForm &window) {
        ConnectedScreenshot::schedule(window, picture);
        if (shown)
            shown(window);
    });
}

} // namespace zelvaro
