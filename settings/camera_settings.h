#pragma once

#include "settings/camera_record.h"

#include <QString>

#include <memory>
#include <vector>

/// What the user has registered: the cameras and the album folder, kept in one text file. Every
/// change is followed by save(), which rewrites the whole file. GUI thread only.
class CameraSettings
{
public:
    CameraSettings();
    ~CameraSettings();
    CameraSettings(const CameraSettings &) = delete;
    CameraSettings &operator=(const CameraSettings &) = delete;

    /// The settings of this process. Lives until the process ends.
    static CameraSettings &instance();

    /// Works out the paths, replaces the records and the album path by what the file says and
    /// makes the album folder. Frees all earlier records. A missing file is an empty one.
    /// @return 0
    int load();

    /// Writes all records and the album path. What cannot be written stays in memory and goes
    /// into the file with the next save.
    /// @return 0, also when the file could not be written
    int save() const;

    /// Appends a camera. @return the record, owned by the settings; null, and nothing changed,
    /// when a camera with this hostname (case matters) is there already.
    CameraRecord *addRecord(int type, const QString &hostname, const QString &username,
                            const QString &password, const QString &name, bool multiLive);

    /// Takes the record out of the list and frees it. An unknown pointer is passed over.
    void removeRecord(CameraRecord *record);

    int count() const;
    /// Record at a zero-based index, in the order of the file; null outside the list.
    CameraRecord *at(int index) const;

    /// Root folder of photos and recordings, with "/" as separator. Not created when set.
    const QString &albumPath() const { return m_albumPath; }
    void setAlbumPath(const QString &path);

    /// Folder of one camera: album root + "/" + hostname, always below the root. A hostname with a
    /// slash makes a folder in a folder; one that is no folder name on every system is written as
    /// zelvaro::folderOfHost() has it, unless the folder with the hostname itself is there.
    QString cameraFolder(const QString &hostname) const;

    const QString &configDir() const { return m_configDir; }
    const QString &configFile() const { return m_configFile; }

private:
    void computePaths();
    void readFile();

    QString m_configDir;
    QString m_configFile;
    QString m_albumPath;
    std::vector<std::unique_ptr<CameraRecord>> m_records;
};
