#pragma once

#include <QGroupBox>

#include <array>

class QLineEdit;
class QValidator;

namespace zelvaro {

/// What the edits of all windows take: pixels across and down, per cent.
struct MotionValidators
{
    const QValidator *x;
    const QValidator *y;
    const QValidator *percent;
};

/// The controls of one motion detection window of a camera: checked when the window is on, with
/// edits for its borders in pixels of 640x480, threshold and sensitivity (1 to 100). GUI thread
/// only.
class MotionWindowBox : public QGroupBox
{
    Q_OBJECT

public:
    /// Left, top, right, bottom, threshold, sensitivity: the order on the wire.
    static constexpr int fieldCount = 6;

    explicit MotionWindowBox(QWidget *parent = nullptr);

    /// number: 1 to 4, part of the title and of the edits' names ("left1"). The validators must
    /// outlive the box.
    void setUp(int number, const MotionValidators &validators);

    /// Whether the window is on ("1" or "0"), then the fields: as the camera's commands have them.
    [[nodiscard]] QStringList values() const;
    /// Takes over values in that order; does nothing when there are too few.
    void setValues(const QStringList &values);

private:
    std::array<QLineEdit *, fieldCount> m_edits{};
};

} // namespace zelvaro
