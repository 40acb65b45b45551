#pragma once

#include <QLabel>

namespace zelvaro {

/// A label of plain text in one line that ends in "…" where it does not fit. The text itself stays
/// whole, and asks for no room.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace zelvaro
