#pragma once

#include "ui/common/escape_key.h"

#include <QSize>
#include <QWidget>

namespace zelvaro {

/// The surface that contains a photo or a video player: black, and filled by its content as far as
/// the content's ratio lets it, also when the surface goes to the full screen and back. GUI thread
/// only.
class FittedFrame : public QWidget
{
    Q_OBJECT

public:
    explicit FittedFrame(QWidget *parent = nullptr);

    /// Becomes a child of the surface.
    void setContent(QWidget *content);
    /// The content keeps the ratio of that size. Empty: unknown, it takes the whole surface.
    void setContentSize(QSize size);

signals:
    /// Escape was pressed here and released.
    void escaped();

protected:
    /// Moves the content to another place.
    virtual void moveContent(QWidget *content, const QRect &place);

    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void placeContent();

    QWidget *m_content = nullptr;
    QSize m_contentSize;
    EscapeKey m_escape;
};

} // namespace zelvaro
