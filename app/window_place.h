#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <optional>

namespace zelvaro {

/// Where the main window was when the program ended.
struct WindowPlace
{
    QRect normal; ///< place and size while it is not maximized
    bool maximized = false;
};

/// As the last writeWindowPlace() left it; nullopt when there is none, or none that can be read.
std::optional<WindowPlace> readWindowPlace(const QString &file);
/// The folder of the file must be there. A failure is passed over: the next start opens the window
/// where a first start does.
void writeWindowPlace(const QString &file, const WindowPlace &place);

/// The place itself while its title can be reached with the pointer, else the nearest one on the
/// first of the screens (their available parts; one at least). Never larger than its screen.
QRect reachablePlace(const QRect &place, const QList<QRect> &screens);

} // namespace zelvaro
