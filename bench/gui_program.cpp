// The whole client with a watch on its GUI thread; prints what it measures for bench_gui.
//
// bench_gui_program empty|dead|grid: an empty window for comparison; the client with cameras that
// do not answer; the client that opens and leaves the grid.

#include "app/main_form.h"
#include "app/program.h"
#include "bench/event_wait.h"
#include "bench/gui_watch.h"
#include "camera/camera.h"
#include "camera/camera_list.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMainWindow>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <optional>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using bench::wait;

constexpr auto startWatched = 10s;
constexpr auto costMeasured = 10s;
constexpr auto connectDeadline = 60s;
constexpr auto playDeadline = 60s;
constexpr auto playWatched = 5s;
constexpr auto afterSwitch = 1s;
// Pools of threads end after 5 s without work.
constexpr auto afterLeaving = 8s;
constexpr int resizes = 10;
constexpr int resizeStep = 30; // pixels

void tell(const char *what, double value)
{
    std::printf("%s %.3f\n", what, value);
    std::fflush(stdout);
}

void tellMoment(const char *what)
{
    tell(what, std::chrono::duration<double, std::milli>(Clock::now().time_since_epoch()).count());
}

void tellBlock(const std::string &phase, const bench::Block &block)
{
    tell((phase + ".waited").c_str(), block.waited);
    tell((phase + ".computed").c_str(), block.computed);
}

double cpuSeconds()
{
    timespec spent{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &spent);
    return static_cast<double>(spent.tv_sec) + static_cast<double>(spent.tv_nsec) / 1e9;
}

/// Tells when a window has been painted for the first time.
class FirstPaint : public QObject
{
public:
    explicit FirstPaint(QWidget &window) : QObject(&window) { window.installEventFilter(this); }

    bool eventFilter(QObject *window, QEvent *event) override
    {
        if (event->type() != QEvent::Paint)
            return false;
        window->removeEventFilter(this);
        // Its children are painted in the same go.
        QTimer::singleShot(0, this, [] { tellMoment("shown"); });
        return false;
    }
};

bool allCameras(const std::function<bool(const CCamera &)> &hold)
{
    const CCameraList &cameras = CCameraList::instance();
    for (int i = 0; i < cameras.count(); ++i)
        if (!hold(*cameras.at(i)))
            return false;
    return true;
}

void click(const CMainForm &window, const char *button)
{
    window.findChild<QAbstractButton *>(QLatin1String(button))->click();
}

void watchDeadCameras(std::optional<bench::GuiWatch> &watch)
{
    wait(startWatched);
    tellBlock("start", watch->takeLongest());
    watch.reset(); // it costs something itself
    const double before = cpuSeconds();
    wait(costMeasured);
    tell("cost", (cpuSeconds() - before) / std::chrono::duration<double>(costMeasured).count());
    watch.emplace();
}

void resizeWindow(CMainForm &window)
{
    const QSize size = window.size();
    for (int i = 1; i <= resizes; ++i) {
        window.resize(size - QSize(i, i) * resizeStep);
        wait(100ms);
    }
    window.resize(size);
    wait(afterSwitch);
}

void watchGrid(CMainForm &window, bench::GuiWatch &watch)
{
    wait(connectDeadline, [] {
        return allCameras(
            [](const CCamera &camera) { return camera.get_state() == CAMERA_STATE_CONNECTED; });
    });
    window.setGeometry(window.screen()->geometry());
    wait(afterSwitch);
    tell("connected", CCameraList::instance().count());
    wait(afterSwitch);

    watch.takeLongest();
    const auto asked = Clock::now();
    click(window, "btnMultiLive");
    if (wait(playDeadline,
             [] { return allCameras([](const CCamera &camera) { return camera.is_playing(); }); }))
        tell("playing", std::chrono::duration<double, std::milli>(Clock::now() - asked).count());
    wait(afterSwitch);
    tellBlock("open", watch.takeLongest());
    wait(playWatched);
    tellBlock("play", watch.takeLongest());
    tell("played", 1);
    resizeWindow(window);
    tellBlock("resize", watch.takeLongest());
    click(window, "btnCameraMgr");
    wait(afterSwitch);
    tellBlock("leave", watch.takeLongest());
    wait(afterLeaving);
    tell("left", 1);
    wait(afterSwitch);
    watch.takeLongest();
}

int runClient(int argc, char **argv, bool grid)
{
    std::optional<bench::GuiWatch> watch;
    const int result = zelvaro::runProgram(argc, argv, [&](CMainForm &window) {
        new FirstPaint(window);
        watch.emplace();
        QTimer::singleShot(0, &window, [&watch, &window, grid] {
            if (grid)
                watchGrid(window, *watch);
            else
                watchDeadCameras(watch);
            tellMoment("quit");
            click(window, "btnClose");
        });
        QObject::connect(qApp, &QCoreApplication::aboutToQuit, &window, [&watch] {
            tellBlock("end", watch->takeLongest());
            watch.reset();
        });
    });
    return result;
}

int runEmpty(int argc, char **argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(1000, 700);
    new FirstPaint(window);
    window.show();
    QTimer::singleShot(1s, &application, [] {
        tellMoment("quit");
        QCoreApplication::quit();
    });
    return QApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    const QString scenario = QString::fromLocal8Bit(argc > 1 ? argv[1] : "");
    argc = 1;
    if (scenario == QLatin1String("empty"))
        return runEmpty(argc, argv);
    return runClient(argc, argv, scenario == QLatin1String("grid"));
}
