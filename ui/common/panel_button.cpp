#include "ui/common/panel_button.h"

namespace zelvaro {

namespace {

constexpr int side = 40;
constexpr int leastWidth = 32;
constexpr int iconSide = 32;

} // namespace

PanelButton::PanelButton(QWidget *parent) : QToolButton(parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setMinimumSize(leastWidth, side);
    setMaximumSize(side, side);
    setIconSize(QSize(iconSide, iconSide));
    setAutoRaise(true);
    setFocusPolicy(Qt::StrongFocus);
    setStyleSheet(
        QStringLiteral("QToolButton:hover{border-image:url(:/images/panelbtn/btnbk_hover.png);}\n"
                       "QToolButton:pressed{border-image:url(:/images/panelbtn/btnbk_down.png);}"));
}

} // namespace zelvaro
