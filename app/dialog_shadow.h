#pragma once

#include <QObject>
#include <QRegion>

namespace zelvaro {

/// Cuts the translucent shadow off the frameless dialogs where the desktop cannot blend it and
/// would show a black rim. Watches all dialogs of the application while it lives. GUI thread only.
class DialogShadow : public QObject
{
    Q_OBJECT

public:
    explicit DialogShadow(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

    /// What a dialog of that size shows without its shadow: a rectangle with round corners.
    static QRegion withoutShadow(const QSize &size);
};

} // namespace zelvaro
