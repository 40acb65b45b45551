#pragma once

#include <QLabel>

namespace zelvaro {

/// A label of plain text in one line, elided where it does not fit; text() stays complete. It
/// requests no width; an elided label without its own tool tip shows the full text in one.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

} // namespace zelvaro
