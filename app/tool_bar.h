#pragma once

#include <QIcon>

#include <array>

class QToolButton;

namespace zelvaro {

/// The row of buttons that switch pages: one of them looks pressed. GUI thread only; the buttons
/// are not owned.
class ToolBar
{
public:
    /// A button with its two images in the resource tree.
    struct Button
    {
        QToolButton *button;
        const char *normal;
        const char *pressed;
    };
    using Buttons = std::array<Button, 5>;

    explicit ToolBar(const Buttons &buttons) : m_buttons(buttons) {}

    /// Gives this button its pressed image and the others their normal ones.
    void mark(const QToolButton *pressed);
    /// Images only, in a lower row.
    void setCompact(bool compact);

private:
    Buttons m_buttons;
};

} // namespace zelvaro
