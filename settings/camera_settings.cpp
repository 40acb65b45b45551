#include "settings/camera_settings.h"

#include "settings/host_name.h"
#include "settings/ini_store.h"
#include "settings/safe_file.h"
#include "settings/stored_text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>
#include <utility>

using zelvaro::SettingsText;

namespace {

Q_LOGGING_CATEGORY(lcSettings, "zelvaro.settings")

using Store = std::unique_ptr<ini_file, void (*)(ini_file *)>;

/// An empty path is a store in memory.
Store openStore(const QString &path, const char *mode)
{
    const QByteArray name = QFile::encodeName(path);
    return {ini_open(name.isEmpty() ? nullptr : name.constData(), mode),
            [](ini_file *file) { ini_close(file); }};
}

QString slashed(QString path)
{
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString read(const Store &store, const char *key)
{
    return QString::fromLocal8Bit(ini_get_string(store.get(), key));
}

QString read(const Store &store, SettingsText which)
{
    return read(store, zelvaro::settingsKey(which));
}

/// A line end in a text would end its line in the file and make the rest a separate line, and a NUL
/// would cut it: both become blanks. False when the text does not come back as it is.
bool write(const Store &store, SettingsText which, QString text)
{
    static const QRegularExpression lineBreakers(QStringLiteral("[\\r\\n\\x00]"));
    text.replace(lineBreakers, QStringLiteral(" "));
    ini_set(store.get(), zelvaro::settingsKey(which), text.toLocal8Bit());
    return zelvaro::storedText(which, text) == zelvaro::StoredText::Whole;
}

bool writeRecord(const Store &store, const CameraRecord &record)
{
    ini_set(store.get(), "TYPE", record.type == CAMERA_TYPE_P2P ? "P2P" : "IP");
    bool whole = write(store, SettingsText::Hostname, record.hostname);
    whole = write(store, SettingsText::Username, record.username) && whole;
    whole = write(store, SettingsText::Password, record.password) && whole;
    whole = write(store, SettingsText::Name, record.name) && whole;
    ini_set(store.get(), "MULTILIVE", record.multiLive ? "1" : "0");
    return whole;
}

std::unique_ptr<CameraRecord> readRecord(const Store &store)
{
    auto record = std::make_unique<CameraRecord>();
    record->hostname = read(store, SettingsText::Hostname);
    record->type = read(store, "TYPE") == QLatin1String("P2P") ? CAMERA_TYPE_P2P : CAMERA_TYPE_IP;
    record->username = read(store, SettingsText::Username);
    record->password = read(store, SettingsText::Password);
    record->name = read(store, SettingsText::Name);
    record->multiLive = read(store, "MULTILIVE") == QLatin1String("1");
    return record;
}

/// Whether there is a camera with this number or a greater one.
bool hasCamerasFrom(int number, const Store &store)
{
    ini_select_section(store.get(), nullptr);
    for (const char *name = nullptr; ini_next_section(store.get(), &name) == 0;) {
        bool isNumber = false;
        if (QByteArray(name).toInt(&isNumber) >= number && isNumber &&
            *ini_get_string(store.get(), zelvaro::settingsKey(SettingsText::Hostname)))
            return true;
    }
    return false;
}

/// The folder that a host name gives on a system that takes every character.
QString hostFolderAsTyped(const QString &hostname)
{
    static const QRegularExpression parentFolder(QStringLiteral("(^|/)\\.\\.(?=/|$)"));
    return slashed(hostname)
        .remove(QChar(QChar::Null))
        .replace(parentFolder, QStringLiteral("\\1_"));
}

} // namespace

CameraSettings::CameraSettings() = default;
CameraSettings::~CameraSettings() = default;

CameraSettings &CameraSettings::instance()
{
    // Never destroyed: pages and sessions that go late at the end may still look.
    static CameraSettings &settings = *new CameraSettings;
    return settings;
}

void CameraSettings::computePaths()
{
    const QString appData =
        slashed(QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation));
    m_configDir = QDir::cleanPath(appData + QStringLiteral("/..")) + QStringLiteral("/Zelvaro");
    m_configFile = m_configDir + QStringLiteral("/Zelvaro.cfg");
    setAlbumPath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) +
                 QStringLiteral("/Zelvaro/Album"));
}

int CameraSettings::load()
{
    computePaths();
    QDir().mkpath(m_configDir);
    safe_file_clean(QFile::encodeName(m_configFile));
    m_copyKept = false;
    readFile();
    if (!QDir().mkpath(m_albumPath))
        qCWarning(lcSettings) << "cannot make the album folder" << m_albumPath;
    return 0;
}

void CameraSettings::readFile()
{
    m_records.clear();
    const Store store = openStore(m_configFile, "r");
    if (!store)
        return;
    const QString album = read(store, SettingsText::AlbumPath);
    if (!album.isEmpty())
        setAlbumPath(album);
    // The same rule as addRecord, which would look through the list for each of many records.
    QSet<QString> hostnames;
    int number = 0;
    for (; ini_select_section(store.get(), QByteArray::number(number)) == 0; ++number) {
        auto record = readRecord(store);
        if (record->hostname.isEmpty() || hostnames.contains(record->hostname))
            continue;
        hostnames.insert(record->hostname);
        m_records.push_back(std::move(record));
    }
    FileTroubles troubles;
    troubles.setFlag(NotRead, store->unread != 0);
    troubles.setFlag(CamerasNotLoaded, hasCamerasFrom(number, store));
    if (troubles)
        qCWarning(lcSettings) << "not all of" << m_configFile << "was read:" << int(troubles);
    setTroubles(FileTroubles(~0), troubles);
}

int CameraSettings::save()
{
    QDir().mkpath(m_configDir);
    keepCopy();
    const Store store = openStore(m_configFile, "w");
    if (!store)
        return 0;
    const bool whole = fill(store);
    const bool written = ini_flush(store.get()) == 0;
    store->dirty = 0; // closing would only try once more
    if (!written)
        qCWarning(lcSettings) << "cannot write" << m_configFile;
    FileTroubles troubles;
    troubles.setFlag(NotWritten, !written);
    troubles.setFlag(TextsNotKept, !whole);
    setTroubles(FileTroubles(NotWritten) | TextsNotKept, troubles);
    return 0;
}

void CameraSettings::keepCopy()
{
    if (m_copyKept)
        return;
    m_copyKept = true;
    if (safe_file_keep_copy(QFile::encodeName(m_configFile)) != 0)
        qCWarning(lcSettings) << "cannot keep a copy of" << m_configFile;
}

bool CameraSettings::fill(const Store &store) const
{
    bool whole = write(store, SettingsText::AlbumPath, m_albumPath);
    for (int i = 0; i < count(); ++i) {
        ini_use_section(store.get(), QByteArray::number(i));
        whole = writeRecord(store, *at(i)) && whole;
    }
    return whole;
}

void CameraSettings::setTroubles(FileTroubles which, FileTroubles troubles)
{
    const FileTroubles before = std::exchange(m_troubles, (m_troubles & ~which) | troubles);
    if (m_troubles != before)
        emit fileTroublesChanged();
}

CameraRecord *CameraSettings::addRecord(int type, const QString &hostname, const QString &username,
                                        const QString &password, const QString &name,
                                        bool multiLive)
{
    const auto sameHost = [&](const auto &record) { return record->hostname == hostname; };
    if (std::any_of(m_records.begin(), m_records.end(), sameHost))
        return nullptr;
    auto record = std::make_unique<CameraRecord>();
    record->type = type;
    record->hostname = hostname;
    record->username = username;
    record->password = password;
    record->name = name;
    record->multiLive = multiLive;
    m_records.push_back(std::move(record));
    return m_records.back().get();
}

void CameraSettings::removeRecord(CameraRecord *record)
{
    const auto same = [&](const auto &candidate) { return candidate.get() == record; };
    const auto found = std::find_if(m_records.begin(), m_records.end(), same);
    if (found != m_records.end())
        m_records.erase(found);
}

int CameraSettings::count() const
{
    return int(m_records.size());
}

CameraRecord *CameraSettings::at(int index) const
{
    return index >= 0 && index < count() ? m_records[size_t(index)].get() : nullptr;
}

void CameraSettings::setAlbumPath(const QString &path)
{
    const QString before = std::exchange(m_albumPath, slashed(path));
    if (m_albumPath != before)
        emit albumPathChanged();
}

QString CameraSettings::cameraFolder(const QString &hostname) const
{
    const QString root = m_albumPath + QLatin1Char('/');
    const QString folder = root + zelvaro::folderOfHost(hostname);
    // An album that was begun under the host name itself is kept.
    const QString former = root + hostFolderAsTyped(hostname);
    return former != folder && QFileInfo(former).isDir() ? former : folder;
}
