#include "app/video_platform.h"

#include "app/x11_connection.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>

#include <string_view>

namespace zelvaro {

namespace {

constexpr char platformVariable[] = "QT_QPA_PLATFORM";
constexpr char displayVariable[] = "DISPLAY";

bool namesPlatform(std::string_view argument)
{
    if (argument.starts_with("--")) // the toolkit takes its options with one hyphen and with two
        argument.remove_prefix(1);
    return argument == "-platform" || argument == "-display";
}

} // namespace

VideoPlatform videoPlatform(int argc, const char *const *argv)
{
    bool chosen = !qEnvironmentVariableIsEmpty(platformVariable);
    for (int i = 1; i < argc; ++i)
        chosen = chosen || namesPlatform(argv[i]);
    if (chosen)
        return VideoPlatform::Chosen;
    return X11Connection().isOpen() ? VideoPlatform::X11 : VideoPlatform::None;
}

QString whyNoVideo()
{
    const QString display = qEnvironmentVariable(displayVariable);
    const QString fault = display.isEmpty()
                              ? QStringLiteral("DISPLAY is not set")
                              : QStringLiteral("the display \"%1\" does not answer").arg(display);
    return QStringLiteral("Video cannot be drawn: Zelvaro needs an X11 display, and %1. In a "
                          "Wayland session, switch Xwayland on.")
        .arg(fault);
}

bool canShowOnWayland()
{
    const QDir plugins(QLibraryInfo::location(QLibraryInfo::PluginsPath) +
                       QStringLiteral("/platforms"));
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") &&
           !plugins.entryList({QStringLiteral("*qwayland*")}, QDir::Files).isEmpty();
}

} // namespace zelvaro
