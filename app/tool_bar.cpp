#include "app/tool_bar.h"

#include <QToolButton>

namespace zelvaro {

namespace {

constexpr int usualHeight = 68;   // pixels
constexpr int compactHeight = 44; // pixels

} // namespace

void ToolBar::mark(const QToolButton *pressed)
{
    for (const Button &entry : m_buttons) {
        const char *image = entry.button == pressed ? entry.pressed : entry.normal;
        entry.button->setIcon(QIcon(QLatin1String(image)));
    }
}

void ToolBar::setCompact(bool compact)
{
    for (const Button &entry : m_buttons) {
        entry.button->setToolButtonStyle(compact ? Qt::ToolButtonIconOnly
                                                 : Qt::ToolButtonTextUnderIcon);
        entry.button->setFixedHeight(compact ? compactHeight : usualHeight);
    }
}

} // namespace zelvaro
