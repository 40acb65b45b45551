#include "app/dialog_style.h"

namespace zelvaro {

QString dialogStyleSheet()
{
    return QStringLiteral(R"(
QLabel { color: rgb(39, 69, 93); }
QLabel#labelTitle { font: bold 11pt "Calibri"; }
QLabel#labelTitleLine { border-image: url(:/images/titleline.png); }
QPushButton {
    border-image: url(:/images/dlgctrl/button_default.png) 6 6 6 6;
    border-width: 6px;
    min-width: 76px;
    min-height: 18px;
    max-height: 18px;
    color: rgb(39, 69, 93);
    font: 10pt "Calibri";
}
QPushButton:hover { border-image: url(:/images/dlgctrl/button_hover.png) 6 6 6 6; }
QPushButton:focus { border-image: url(:/images/dlgctrl/button_focus.png) 6 6 6 6; }
QPushButton:pressed { border-image: url(:/images/dlgctrl/button_down.png) 6 6 6 6; }
QPushButton:disabled {
    border-image: url(:/images/dlgctrl/button_disabled.png) 6 6 6 6;
    color: rgb(110, 128, 142);
}
QLineEdit {
    border-image: url(:/images/dlgctrl/text_default.png) 5 6 5 6;
    border-top-width: 5px;
    border-bottom-width: 5px;
    border-left-width: 6px;
    border-right-width: 6px;
    min-height: 18px;
    max-height: 18px;
    color: rgb(25, 45, 62);
    selection-background-color: rgb(62, 112, 153);
}
QLineEdit:hover { border-image: url(:/images/dlgctrl/text_hover.png) 5 6 5 6; }
QLineEdit:focus { border-image: url(:/images/dlgctrl/text_focus.png) 5 6 5 6; }
QLineEdit:disabled, QLineEdit[readOnly="true"] {
    border-image: url(:/images/dlgctrl/text_disabled.png) 5 6 5 6;
}
)");
}

} // namespace zelvaro
