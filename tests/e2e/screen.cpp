#include "tests/e2e/screen.h"

#include <QPixmap>
#include <QScreen>

namespace {

bool isBlank(const QImage &picture)
{
    QImage plain = picture;
    plain.fill(picture.pixelColor(0, 0));
    return plain == picture;
}

} // namespace

QImage pictureOnScreen(const QWidget &widget)
{
    const QPoint corner = widget.mapToGlobal(QPoint(0, 0));
    return widget.screen()
        ->grabWindow(0, corner.x(), corner.y(), widget.width(), widget.height())
        .toImage();
}

bool PictureWatch::hasMoved()
{
    const QImage now = pictureOnScreen(m_widget);
    if (m_first.size() != now.size() || isBlank(m_first))
        m_first = now; // the first look, or the window went to another size
    m_moved = m_moved || m_first != now;
    return m_moved;
}
