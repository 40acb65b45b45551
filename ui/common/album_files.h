#pragma once

#include <QDateTime>
#include <QString>

#include <functional>

/// Where the photos and recordings of a camera lie. The live views write these names and the album
/// pages read them.

namespace zelvaro {

/// Returns the local date and time; tests replace it by a fixed clock.
using Clock = std::function<QDateTime()>;
QDateTime localTime();

/// Size in bytes at which a clip is closed and the next one begun.
constexpr int recordingLimit = 104857600;

constexpr char photoFilter[] = "*.jpg";
constexpr char clipFilter[] = "*.mp4";

/// Makes a camera's folder, with all its parents, when it is missing. A failure shows when a file
/// is written into it.
void makeFolder(const QString &folder);

/// "/20240305_070809", with the slash. Two stamps of the same second are equal.
QString timeStamp(const QDateTime &time);

/// The file of a photo taken at that time.
QString photoFile(const QString &folder, const QDateTime &time);
/// Name of a recording begun at that time, without extension: the stream library adds it.
QString recordingBase(const QString &folder, const QDateTime &time);
/// The first clip of a recording.
QString clipFile(const QString &recordingBase);
/// The still picture of a clip: its name followed by a second extension.
QString clipStill(const QString &clipFile);

} // namespace zelvaro
