#pragma once

#include <QString>
#include <QVector>
#include <QWidget>

namespace zelvaro {

/// What is drawn over a live picture. With nothing to say it is empty.
struct OverlayContent
{
    bool dimmed = false;    ///< the picture below is old
    QString notice;         ///< in the middle: what is wrong with the picture
    QString name;           ///< at the top left: the camera
    QString clock;          ///< at the top right: when the picture was taken
    bool recording = false; ///< red mark at the top left

    bool isEmpty() const
    {
        return !dimmed && notice.isEmpty() && name.isEmpty() && clock.isEmpty() && !recording;
    }
    bool operator==(const OverlayContent &other) const
    {
        return dimmed == other.dimmed && notice == other.notice && name == other.name &&
               clock == other.clock && recording == other.recording;
    }
};

/// Lies over a live picture and tells what the picture cannot: plates with texts, and every second
/// line black over a picture that is old. Under X11 a child window hides what another connection
/// draws below it, so it has the shape of what it draws, and none with nothing to say. GUI thread
/// only.
class PictureOverlay : public QWidget
{
    Q_OBJECT

public:
    explicit PictureOverlay(QWidget *picture);

    void setContent(const OverlayContent &content);
    const OverlayContent &content() const { return m_content; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Plate
    {
        QRect place;
        QString text;
        int flags; ///< of the text
        bool mark; ///< begins with the record mark
    };

    void layOut();
    void takeShape();
    void addPlate(Qt::Alignment alignment, const QString &text, bool mark);
    QRegion shape() const;

    OverlayContent m_content;
    QVector<Plate> m_plates;
};

} // namespace zelvaro
