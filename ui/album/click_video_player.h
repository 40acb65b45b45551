#pragma once

#include <QSize>

#include <phonon/videoplayer.h>

/// The media framework's player, which reports double clicks. GUI thread only.
class ClickVideoPlayer : public Phonon::VideoPlayer
{
    Q_OBJECT

public:
    explicit ClickVideoPlayer(QWidget *parent = nullptr);

    /// False when no back end of the media framework is installed: nothing will ever play.
    bool hasBackEnd() const;
    /// Whether there is a source and it has come to its end.
    bool isAtEnd() const;
    /// Size of the video; empty while unknown. May be a default of the back end.
    QSize videoSizeHint() const;
    void playFile(const QString &file);
    bool hasVideo() const;
    /// The video widget's own full screen, which is not the page's.
    void leaveVideoFullScreen();
    /// Stops, and lets go of the file.
    void closeFile();
    /// Clears the last frame, if there is one.
    void clearVideo();

signals:
    /// A double click with the left button.
    void doubleClicked();
    /// Some times a second while it plays, and when the length becomes known. Milliseconds; total
    /// is 0 or negative while it is unknown.
    void timeChanged(qint64 elapsed, qint64 total);

protected:
    void mouseDoubleClickEvent(QMouseEvent *event) override;
};
