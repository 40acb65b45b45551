#include "app/window_place.h"

#include <QSettings>

#include <algorithm>

namespace zelvaro {

namespace {

// What has to be on a screen of the strip that drags the window, in pixels.
constexpr int titleHeight = 28;
constexpr int leastTitleWidth = 100;

const QString placeKey = QStringLiteral("window/place");
const QString maximizedKey = QStringLiteral("window/maximized");

bool isTitleOn(const QRect &screen, const QRect &place)
{
    const QRect title(place.topLeft(), QSize(place.width(), titleHeight));
    const QRect seen = title & screen;
    return seen.width() >= leastTitleWidth && seen.height() == titleHeight;
}

} // namespace

std::optional<WindowPlace> readWindowPlace(const QString &file)
{
    const QSettings settings(file, QSettings::IniFormat);
    const QRect normal = settings.value(placeKey).toRect();
    if (normal.isEmpty())
        return {};
    return WindowPlace{normal, settings.value(maximizedKey).toBool()};
}

void writeWindowPlace(const QString &file, const WindowPlace &place)
{
    QSettings settings(file, QSettings::IniFormat);
    settings.setValue(placeKey, place.normal);
    settings.setValue(maximizedKey, place.maximized);
}

QRect reachablePlace(const QRect &place, const QList<QRect> &screens)
{
    const auto found = std::find_if(screens.begin(), screens.end(),
                                    [&](const QRect &screen) { return isTitleOn(screen, place); });
    if (found != screens.end())
        return {place.topLeft(), place.size().boundedTo(found->size())};

    const QRect &screen = screens.first();
    QRect moved(place.topLeft(), place.size().boundedTo(screen.size()));
    moved.moveLeft(qBound(screen.left(), moved.left(), screen.right() + 1 - moved.width()));
    moved.moveTop(qBound(screen.top(), moved.top(), screen.bottom() + 1 - moved.height()));
    return moved;
}

} // namespace zelvaro
