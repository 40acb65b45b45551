#include "tests/gallery/checks.h"
#include "tests/gallery/controls.h"
#include "ui/common/elided_label.h"

namespace gallery {

namespace {

/// The strip below a picture that is smaller than the strip: its text is in the tool tip.
bool isTooSmallToRead(const QWidget &control)
{
    constexpr int leastWidth = 32;
    return qobject_cast<const zelvaro::ElidedLabel *>(&control) && control.width() < leastWidth;
}

} // namespace

QStringList misplacedControls(QWidget &window)
{
    QStringList found;
    const QVector<QWidget *> controls = controlsOf(window);
    QVector<QRect> places;
    for (const QWidget *control : controls) {
        places.append(placeIn(window, *control));
        if (places.last().size() != control->size() && !isScrolled(window, *control) &&
            !isTooSmallToRead(*control)) {
            found << QStringLiteral("cut off: %1: %2x%3 of %4x%5 can be seen")
                         .arg(nameOf(*control))
                         .arg(places.last().width())
                         .arg(places.last().height())
                         .arg(control->width())
                         .arg(control->height());
        }
    }
    for (int i = 0; i < controls.size(); ++i) {
        for (int j = i + 1; j < controls.size(); ++j) {
            if (places.at(i).intersects(places.at(j))) {
                found << QStringLiteral("overlap: %1 and %2")
                             .arg(nameOf(*controls.at(i)), nameOf(*controls.at(j)));
            }
        }
    }
    return found;
}

} // namespace gallery
