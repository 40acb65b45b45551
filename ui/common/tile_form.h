#pragma once

#include <QWidget>

namespace zelvaro {

/// A tile of a page's grid that represents a camera or a file: a left double click or the Return
/// key opens it, the Delete key deletes it, and it shows when it has the keyboard focus. Keeps its
/// place in the grid when it is hidden. GUI thread only.
class TileForm : public QWidget
{
public:
    explicit TileForm(QWidget *parent = nullptr);

protected:
    virtual void openItem() = 0;
    virtual void deleteItem() = 0;
    virtual void showFocus(bool focused) = 0;

    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
};

} // namespace zelvaro
