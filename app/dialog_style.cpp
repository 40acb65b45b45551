#include "app/dialog_style.h"

namespace zelvaro {

QString dialogStyleSheet()
{
    return QStringLiteral(R"(
QLabel { color: rgb(39, 69, 93); }
QLabel#labelTitle { font-weight: bold; }
QPushButton {
    border-image: url(:/images/dlgctrl/button_default.png) 6 6 6 6 stretch stretch;
    border-width: 6px;
    min-width: 68px;
    min-height: 16px;
    color: rgb(39, 69, 93);
}
QPushButton:hover, QPushButton:focus {
    border-image: url(:/images/dlgctrl/button_hover.png) 6 6 6 6 stretch stretch;
}
QPushButton:pressed {
    border-image: url(:/images/dlgctrl/button_down.png) 6 6 6 6 stretch stretch;
}
QPushButton:disabled { color: rgb(150, 165, 178); }
QLineEdit {
    border-image: url(:/images/dlgctrl/text_default.png) 4 4 4 4 stretch stretch;
    border-width: 4px;
    min-height: 16px;
    color: rgb(25, 45, 62);
    selection-background-color: rgb(83, 135, 178);
}
QLineEdit:hover, QLineEdit:focus {
    border-image: url(:/images/dlgctrl/text_hover.png) 4 4 4 4 stretch stretch;
}
)");
}

} // namespace zelvaro
