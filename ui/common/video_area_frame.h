#pragma once

#include <QFrame>

/// The area that a picture is fitted into. GUI thread only.
class CVideoAreaFrame : public QFrame
{
    Q_OBJECT

public:
    using QFrame::QFrame;

signals:
    /// The area has another size.
    void signalResize();

protected:
    void resizeEvent(QResizeEvent *event) override;
};
