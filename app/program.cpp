#include "app/program.h"

#include "app/child_margins.h"
#include "app/connected_screenshot.h"
#include "app/dialog_shadow.h"
#include "app/main_form.h"
#include "app/screen_density.h"
#include "app/screenshot_pages.h"
#include "app/single_instance.h"
#include "app/start_environment.h"
#include "app/version.h"
#include "app/video_platform.h"
#include "app/window_activation.h"
#include "app/window_place.h"
#include "camera/camera_list.h"
#include "camera/optional_functions.h"
#include "resources/resources.h"
#include "settings/camera_settings.h"
#include "ui/common/message_box.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QLoggingCategory>
#include <QMetaEnum>
#include <QOpenGLContext>
#include <QStandardPaths>
#include <QTextCodec>
#include <QThreadPool>
#include <QTranslator>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace zelvaro {

namespace {

Q_LOGGING_CATEGORY(lcProgram, "zelvaro.program")

constexpr int maxBackgroundTasks = 64;

// Sizes are in logical pixels on every screen and pictures are taken at its density. Factors
// between the whole ones are kept: rounded, the texts would outgrow the pictures around them.
void followScreenDensity()
{
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling, isDenseDesktop());
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps, true);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
}

void setAttributes()
{
    // The stream library draws on native child windows, from its own threads.
    QCoreApplication::setAttribute(Qt::AA_NativeWindows, true);
    // Qt 5.15 hides this name from code that uses no deprecated ones, and still has the attribute.
    const int x11InitThreads =
        QMetaEnum::fromType<Qt::ApplicationAttribute>().keyToValue("AA_X11InitThreads");
    QCoreApplication::setAttribute(static_cast<Qt::ApplicationAttribute>(x11InitThreads), true);
    followScreenDensity();
}

void declareOptions(QCommandLineParser &parser)
{
    parser.setApplicationDescription(QStringLiteral("Client for network cameras."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({QStringLiteral("screenshot"),
                      QStringLiteral("Save a picture of the window as PNG once all cameras are "
                                     "connected, and quit."),
                      QStringLiteral("file")});
    parser.addOption({QStringLiteral("page"),
                      QStringLiteral("With --screenshot: first show this page (%1) with something "
                                     "on it, taking photos or recordings of the first camera for "
                                     "photos and videos.")
                          .arg(screenshotPages().join(QStringLiteral(", "))),
                      QStringLiteral("name")});
}

/// Answers --help and --version, which need no display, and ends the process.
void answerQuestions(int &argc, char **argv)
{
    static constexpr std::string_view questions[] = {"-h", "--help", "--help-all", "-v",
                                                     "--version"};
    if (argc != 2 ||
        std::find(std::begin(questions), std::end(questions), argv[1]) == std::end(questions))
        return;
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    declareOptions(parser);
    parser.process(application);
}

/// The requested picture of the window.
struct Picture
{
    QString file; ///< empty for none
    QString page; ///< empty for the first one as it is
};

/// Ends the program on options that it does not know.
Picture requestedPicture(const QApplication &application)
{
    QCommandLineParser parser;
    declareOptions(parser);
    parser.process(application);
    const Picture picture{parser.value(QStringLiteral("screenshot")),
                          parser.value(QStringLiteral("page"))};
    if (picture.page.isEmpty() ||
        (!picture.file.isEmpty() && screenshotPages().contains(picture.page)))
        return picture;
    std::fputs("zelvaro: --page takes the name of a page and needs --screenshot\n", stderr);
    std::exit(1);
}

/// Says on standard error why nothing can be drawn, and on the screen where there is one.
int refuseWithoutVideo(int &argc, char **argv)
{
    std::fprintf(stderr, "zelvaro: %s\n", qPrintable(whyNoVideo()));
    if (canShowOnWayland()) {
        StartEnvironment environment;
        environment.set("QT_QPA_PLATFORM", "wayland");
        const QApplication application(argc, argv);
        initResources();
        applyLook();
        CMessageBox(CMessageBox::Error, QStringLiteral("Zelvaro"), whyNoVideo(), QMessageBox::Ok)
            .exec();
    }
    return 1;
}

/// Lets the library that is loaded for the window system read what it looks up later than when
/// the application object is made.
void readStartEnvironment()
{
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        QOpenGLContext::supportsThreadedOpenGL(); // makes it choose how OpenGL is drawn
    else
        qCWarning(lcProgram) << "live video is drawn on the platform xcb only, and this is"
                             << QGuiApplication::platformName();
}

// One after the other: each part needs the earlier ones and is destroyed before them.
int runWindow(QApplication &application, SingleInstance &instance,
              const std::function<void(CMainForm &)> &shown)
{
    // Stays empty: the user interface shows the source texts.
    QTranslator translator(&application);
    QCoreApplication::installTranslator(&translator);

    CameraSettings &settings = CameraSettings::instance();
    CCameraList &cameras = CCameraList::instance();
    settings.load();
    OptionalFunctions::instance().setKnownKeysFile(settings.configDir() +
                                                   QStringLiteral("/KnownKeys"));
    cameras.startSessions(settings);

    QTextCodec::setCodecForLocale(QTextCodec::codecForName("System"));
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &cameras, &CCameraList::closing);

    const DialogShadow shadow;
    auto mainForm = std::make_unique<CMainForm>();
    setPageHost(mainForm.get());
    const QString placeFile = settings.configDir() + QStringLiteral("/Window.ini");
    if (const auto place = readWindowPlace(placeFile))
        mainForm->setPlace(*place);
    mainForm->show();
    QObject::connect(&instance, &SingleInstance::activated, mainForm.get(),
                     [&window = *mainForm] { bringToFront(window); });
    if (shown)
        shown(*mainForm);
    const int result = QApplication::exec();

    writeWindowPlace(placeFile, mainForm->place());
    mainForm.reset();
    cameras.destroyAll();
    return result;
}

} // namespace

int runProgram(int &argc, char **argv, const std::function<void(CMainForm &)> &shown)
{
    // The settings folder is named by it. No organisation: the folder is directly in the user's.
    QCoreApplication::setApplicationName(QStringLiteral("Zelvaro"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(version));
    answerQuestions(argc, argv);
    const VideoPlatform platform = videoPlatform(argc, argv);
    if (platform == VideoPlatform::None)
        return refuseWithoutVideo(argc, argv);

    setAttributes();
    StartEnvironment environment;
    if (platform == VideoPlatform::X11)
        environment.set("QT_QPA_PLATFORM", "xcb");
    // Nothing here is drawn with OpenGL, and looking for it takes a tenth of the start.
    environment.set("QT_XCB_GL_INTEGRATION", "none");
    QThreadPool::globalInstance()->setMaxThreadCount(maxBackgroundTasks);

    QApplication application(argc, argv);
    readStartEnvironment();
    environment.restore();
    const Picture picture = requestedPicture(application);
    SingleInstance instance(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
    if (instance.handOver()) {
        if (picture.file.isEmpty())
            return 0;
        std::fputs("zelvaro: no screenshot: the program runs already\n", stderr);
        return 1;
    }
    QObject::connect(&application, &QCoreApplication::aboutToQuit, &instance,
                     &SingleInstance::close);
    declareChildMargins(&application);
    initResources();
    applyLook();
    return runWindow(application, instance, [&](CMainForm &window) {
        if (!picture.file.isEmpty())
            ConnectedScreenshot::schedule(window, picture.file, picture.page);
        if (shown)
            shown(window);
    });
}

} // namespace zelvaro
