#pragma once

#include <QLabel>

namespace zelvaro {

/// A label of plain text in one line that ends in "…" where it does not fit. The text itself stays
/// whole, and asks for no room; a label without a tool tip of its own tells it in one.
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
