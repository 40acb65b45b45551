#include "app/main_form.h"
#include "app/program.h"
#include "app/version.h"
#include "camera/camera.h"
#include "camera/camera_list.h"
#include "settings/camera_settings.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/settings/settings_home.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QProcess>
#include <QTest>
#include <QTextCodec>
#include <QThreadPool>
#include <QTimer>
#include <QTranslator>
#include <QWindow>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>

namespace {

constexpr int deadline = 20'000; // milliseconds

using Steps = std::function<void(CMainForm &)>;

/// Runs the program from its entry to its end, with steps in its event loop.
/// @return its exit code
int run(const Steps &steps, std::vector<QByteArray> arguments = {})
{
    arguments.insert(arguments.begin(), "zelvaro");
    std::vector<char *> argv;
    for (QByteArray &argument : arguments)
        argv.push_back(argument.data());
    int argc = static_cast<int>(argv.size());
    argv.push_back(nullptr);
    return zelvaro::runProgram(argc, argv.data(), [&steps](CMainForm &window) {
        QTimer::singleShot(0, &window, [&steps, &window] {
            steps(window);
            QCoreApplication::exit(0);
        });
    });
}

/// How many sessions there were at the first event of the main window.
class FirstEvent : public QObject
{
public:
    explicit FirstEvent(QObject *parent) : QObject(parent) {}

    bool eventFilter(QObject *object, QEvent *) override
    {
        if (!sessions && qobject_cast<CMainForm *>(object))
            sessions = static_cast<int>(fake_cammgr::players().size());
        return false;
    }

    static inline std::optional<int> sessions;
};

void watchMainWindow()
{
    // Not qApp, which takes it for a QApplication: --version and --help make none.
    QCoreApplication *application = QCoreApplication::instance();
    application->installEventFilter(new FirstEvent(application));
}
Q_COREAPP_STARTUP_FUNCTION(watchMainWindow)

bool isLoaded(const QByteArray &library)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(library);
}

QByteArray camera(const char *hostname)
{
    return QByteArray("[0]\nTYPE=P2P\nHOSTNAME=") + hostname +
           "\nUSERNAME=admin\nPASSWORD=secret\nNAME=\"Front door\"\nMULTILIVE=1\n";
}

} // namespace

/// The start and the end of the program, over scripted libraries and on a real display.
class TestProgram : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_display = qgetenv("DISPLAY");
        m_runtime.emplace();
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime->path()));
    }

    void init()
    {
        fake_cammgr::reset();
        FirstEvent::sessions.reset();
        m_home.emplace();
        qputenv("DISPLAY", m_display);
        for (const char *name : {"QT_QPA_PLATFORM", "QT_XCB_GL_INTEGRATION", "WAYLAND_DISPLAY"})
            qunsetenv(name);
    }

    void applicationIsPrepared()
    {
        QTextCodec::setCodecForLocale(nullptr);
        const QByteArray systemCodec = QTextCodec::codecForLocale()->name();
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("KOI8-R"));
        const int code = run([&systemCodec](CMainForm &window) {
            QVERIFY(QCoreApplication::testAttribute(Qt::AA_NativeWindows));
            constexpr auto x11InitThreads = static_cast<Qt::ApplicationAttribute>(10);
            QVERIFY(QCoreApplication::testAttribute(x11InitThreads));
            QCOMPARE(QThreadPool::globalInstance()->maxThreadCount(), 64);
            QCOMPARE(QTextCodec::codecForLocale()->name(), systemCodec);
            QCOMPARE(QCoreApplication::applicationVersion(), QString(zelvaro::version));
            const auto *label = window.findChild<QLabel *>("labelVersion");
            QVERIFY(label->text().startsWith(QString("Version %1 ").arg(zelvaro::version)));
        });
        QCOMPARE(code, 0);
    }

    void emptyTranslatorIsInstalled()
    {
        run([](CMainForm &) {
            auto *translator = qApp->findChild<QTranslator *>();
            QVERIFY(translator);
            QVERIFY(translator->isEmpty());
            QVERIFY(QCoreApplication::removeTranslator(translator)); // true if it was installed
            QCoreApplication::installTranslator(translator);
        });
    }

    void sessionsAreThereBeforeTheWindow()
    {
        m_home->write(camera("one"));
        run([](CMainForm &window) {
            QVERIFY(window.isVisible());
            QCOMPARE(CCameraList::instance().count(), 1);
        });
        QCOMPARE(FirstEvent::sessions, std::optional<int>(1));
    }

    // On quitting, every session is stopped; then the window is destroyed, then the sessions.
    void endGoesBackwards()
    {
        fake_cammgr::Script playing;
        playing.playing = 1;
        fake_cammgr::setDefaults(playing);
        m_home->write(camera("one"));
        QStringList order;
        run([&](CMainForm &window) {
            CCamera *session = CCameraList::instance().at(0);
            QVERIFY(session);
            connect(qApp, &QCoreApplication::aboutToQuit, session, [&order, session] {
                order << (session->is_stopped() && !session->is_playing() ? "stopped" : "running");
            });
            connect(&window, &QObject::destroyed, session, [&order] { order << "window gone"; });
            connect(session, &QObject::destroyed, qApp, [&order] { order << "session gone"; });
        });
        QCOMPARE(order, QStringList({"stopped", "window gone", "session gone"}));
        QVERIFY(fake_cammgr::player("one")->deleted());
        QVERIFY(fake_cammgr::contractViolations().empty());
    }

    void waylandSessionIsDrawnOnThroughX11()
    {
        qputenv("XDG_SESSION_TYPE", "wayland");
        qputenv("WAYLAND_DISPLAY", "wayland-of-nobody");
        run([](CMainForm &) { QCOMPARE(QGuiApplication::platformName(), QString("xcb")); });
        qunsetenv("XDG_SESSION_TYPE");
    }

    // The browser would inherit it.
    void environmentIsTheUsersAgain()
    {
        qputenv("QT_QPA_PLATFORM", "");
        const QProcessEnvironment before = QProcessEnvironment::systemEnvironment();
        run([&before](CMainForm &window) {
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            const QProcessEnvironment during = QProcessEnvironment::systemEnvironment();
            QCOMPARE(during.toStringList(), before.toStringList());
            // No OpenGL was looked for all the same.
            QVERIFY(isLoaded("/platforms/libqxcb"));
            QVERIFY(!isLoaded("/xcbglintegrations/"));
        });
    }

    void missingDisplayEndsTheProgramWithAReason()
    {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        program.setProcessEnvironment(environment);
        startAnother(program);
        QVERIFY(program.waitForFinished(deadline));
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 1);
        QVERIFY(program.readAllStandardError().contains("Video cannot be drawn"));
    }

    void versionNeedsNoDisplay()
    {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove("DISPLAY");
        program.setProcessEnvironment(environment);
        startAnother(program, {"--version"});
        QVERIFY(program.waitForFinished(deadline));
        QCOMPARE(program.exitCode(), 0);
        QCOMPARE(program.readAllStandardOutput(), QByteArray("Zelvaro ") + zelvaro::version + "\n");
    }

    void secondStartBringsTheWindowToTheFront()
    {
        m_home->write(camera("one"));
        run([](CMainForm &window) {
            QVERIFY(QTest::qWaitForWindowActive(&window));
            window.slotMinimized();
            QTRY_VERIFY_WITH_TIMEOUT(!window.isActiveWindow(), deadline);
            QProcess second;
            startAnother(second);
            QTRY_COMPARE_WITH_TIMEOUT(second.state(), QProcess::NotRunning, deadline);
            QCOMPARE(second.exitCode(), 0);
            QTRY_VERIFY_WITH_TIMEOUT(window.isActiveWindow() && !window.isMinimized(), deadline);
        });
        QCOMPARE(fake_cammgr::players().size(), std::size_t(1));
    }

    // It would undo what the first has saved, and log in to every camera once more.
    void secondStartTouchesNeitherSettingsNorCameras()
    {
        m_home->write(camera("one"));
        run([this](CMainForm &) {
            CameraSettings::instance().at(0)->name = "Renamed";
            CameraSettings::instance().save();
            const QByteArray saved = m_home->read();
            QVERIFY(saved.contains("Renamed"));
            QProcess second;
            startAnother(second);
            QTRY_COMPARE_WITH_TIMEOUT(second.state(), QProcess::NotRunning, deadline);
            QCOMPARE(second.readAllStandardOutput(), QByteArray("0 sessions\n"));
            QCOMPARE(m_home->read(), saved);
        });
    }

    void secondStartTakesNoPicture()
    {
        run([this](CMainForm &) {
            QProcess second;
            const QString file = m_home->path() + "/picture.png";
            startAnother(second, {"--screenshot", file});
            QTRY_COMPARE_WITH_TIMEOUT(second.state(), QProcess::NotRunning, deadline);
            QCOMPARE(second.exitCode(), 1);
            QVERIFY(second.readAllStandardError().contains("runs already"));
            QVERIFY(!QFile::exists(file));
        });
    }

    void otherSettingsRunBesideIt()
    {
        run([this](CMainForm &) {
            QProcess other;
            QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
            environment.insert("XDG_DATA_HOME", m_home->path() + "/other");
            other.setProcessEnvironment(environment);
            const QString file = m_home->path() + "/picture.png";
            startAnother(other, {"--screenshot", file});
            QTRY_COMPARE_WITH_TIMEOUT(other.state(), QProcess::NotRunning, deadline);
            QCOMPARE(other.exitCode(), 0);
            QVERIFY(QFile::exists(file));
        });
    }

private:
    static void startAnother(QProcess &process, const QStringList &arguments = {})
    {
        process.start(QStringLiteral("/proc/self/exe"),
                      QStringList(QString(asProgram)) + arguments);
    }

public:
    /// An argument with which this test is the program itself.
    static constexpr char asProgram[] = "--as-program";

private:
    QByteArray m_display;
    std::optional<QTemporaryDir> m_runtime;
    std::optional<SettingsHome> m_home;
};

namespace {

/// A process can have one application object after the other, but not all of what the toolkit keeps
/// next to it: each function has its own process.
int runEachAlone(const char *program)
{
    static const QByteArrayList around = {"initTestCase", "init"};
    const QMetaObject &test = TestProgram::staticMetaObject;
    int failed = 0;
    for (int i = test.methodOffset(); i < test.methodCount(); ++i) {
        const QByteArray name = test.method(i).name();
        if (!around.contains(name) && QProcess::execute(program, {name}) != 0)
            ++failed;
    }
    return failed;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 1)
        return runEachAlone(argv[0]);
    if (std::strcmp(argv[1], TestProgram::asProgram) == 0) {
        std::rotate(argv + 1, argv + 2, argv + argc);
        argv[--argc] = nullptr;
        const int code = zelvaro::runProgram(argc, argv);
        std::printf("%zu sessions\n", fake_cammgr::players().size());
        return code;
    }
    TestProgram test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_program.moc"
