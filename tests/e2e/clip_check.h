#pragma once

#include <QString>
#include <QStringList>

/// Looks at recordings with the programs of others. Each call waits for that program's end.

/// Whether one of them can be started. ffmpeg and ffprobe must be there, the others may be missing.
bool isInstalled(const QString &program);

/// The pictures of a clip as they are stored.
struct ClipFacts
{
    QStringList contents;  ///< a check sum of each picture, in order; empty when it is no clip
    double seconds = 0;    ///< from the first picture to the end of the last
    double longestGap = 0; ///< seconds from one picture to the next, at most
};

/// By ffprobe.
ClipFacts clipFacts(const QString &file);
/// Video frames that can be decoded, by ffprobe; also of a clip that is being written.
int decodedFrames(const QString &file);
/// What ffmpeg complains of when it decodes all of the clip; empty when it is faultless.
QString decodingErrors(const QString &file);
/// Whether mpv shows that many frames and ends without an error.
bool playsInMpv(const QString &file, int frames);

/// Frames that VLC has shown, of each ten one; for root too, for whom it does not run otherwise.
int framesShownByVlc(const QString &file);
