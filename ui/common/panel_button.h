#pragma once

#include <QToolButton>

namespace zelvaro {

/// A button in the row below a picture: 40 pixels square, down to 32 wide where the row is narrow,
/// lit under the pointer and while it is pressed. The form gives it its icon, tool tip and
/// accessible name. GUI thread only.
class PanelButton : public QToolButton
{
    Q_OBJECT

public:
    explicit PanelButton(QWidget *parent = nullptr);
};

} // namespace zelvaro
