#pragma once

#include <QLabel>

namespace zelvaro {

/// A label of one line that cuts its text with an ellipsis where it is too long for its width, and
/// shows it whole as a tool tip. text() stays whole.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
};

} // namespace zelvaro
