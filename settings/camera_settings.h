#pragma once

#include "settings/camera_record.h"

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

struct ini_file;

/// What the user has registered: the cameras and the album folder, kept in one text file. Every
/// change is followed by save(), which rewrites the whole file. GUI thread only.
class CameraSettings : public QObject
{
    Q_OBJECT

public:
    /// What keeps settings and file apart; several at a time.
    enum FileTrouble
    {
        NotRead = 1,          ///< the file is there and could not be read
        CamerasNotLoaded = 2, ///< the file holds cameras after a gap in their numbers
        NotWritten = 4,       ///< the last save failed
        TextsNotKept = 8      ///< a text was saved that the next start changes or cuts
    };
    Q_DECLARE_FLAGS(FileTroubles, FileTrouble)

    CameraSettings();
    ~CameraSettings() override;

    /// The settings of this process. Lives until the process ends.
    static CameraSettings &instance();

    /// Works out the paths, replaces the records and the album path by what the file says and
    /// makes the album folder. Frees all earlier records. A missing file is an empty one. Removes
    /// what a save left behind that was killed.
    /// @return 0
    int load();

    /// Writes all records and the album path, on the disk when it returns. What cannot be written
    /// stays in memory and is written into the file with the next save. The first save after load()
    /// keeps a copy of the file as it was found, with ".bak" after its name.
    /// @return 0, also when the file could not be written
    int save();

    /// Of the last load and save.
    FileTroubles fileTroubles() const { return m_troubles; }

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

signals:
    void albumPathChanged();
    void fileTroublesChanged();

private:
    using Store = std::unique_ptr<ini_file, void (*)(ini_file *)>;

    void computePaths();
    void readFile();
    void keepCopy();
    /// Fills a store with all that is saved. False when a text does not come back as it is.
    bool fill(const Store &store) const;
    void setTroubles(FileTroubles which, FileTroubles troubles);

    QString m_configDir;
    QString m_configFile;
    QString m_albumPath;
    std::vector<std::unique_ptr<CameraRecord>> m_records;
    FileTroubles m_troubles;
    bool m_copyKept = false; // of the file as this run found it
};
