#include "settings/camera_settings.h"

#include "settings/host_name.h"
#include "settings/ini_store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>

#include <algorithm>

namespace {

Q_LOGGING_CATEGORY(lcSettings, "zelvaro.settings")

struct StoreCloser
{
    void operator()(ini_file *file) const { ini_close(file); }
};
using Store = std::unique_ptr<ini_file, StoreCloser>;

/// An empty path is a store in memory.
Store openStore(const QString &path, const char *mode)
{
    if (path.isEmpty()) {
        return Store(ini_open(nullptr, mode));
    }
    return Store(ini_open(QFile::encodeName(path).constData(), mode));
}

QString slashed(QString path)
{
    return path.replace(QLatin1Char('\\'), QLatin1Char('/'));
}

QString read(const Store &store, const char *key)
{
    return QString::fromLocal8Bit(ini_get_string(store.get(), key));
}

/// A line end in a text would end its line in the file and make the rest a line of its own, and a
/// NUL would cut it: both become blanks.
void write(const Store &store, const char *key, QString text)
{
    static const QRegularExpression lineBreakers(QStringLiteral("[\\r\\n\\x00]"));
    ini_set(store.get(), key, text.replace(lineBreakers, QStringLiteral(" ")).toLocal8Bit());
}

void writeRecord(const Store &store, const CameraRecord &record)
{
    write(store, "TYPE",
          record.type == CAMERA_TYPE_P2P ? QStringLiteral("P2P") : QStringLiteral("IP"));
    write(store, "HOSTNAME", record.hostname);
    write(store, "USERNAME", record.username);
    write(store, "PASSWORD", record.password);
    write(store, "NAME", record.name);
    write(store, "MULTILIVE", record.multiLive ? QStringLiteral("1") : QStringLiteral("0"));
}

std::unique_ptr<CameraRecord> readRecord(const Store &store)
{
    auto record = std::make_unique<CameraRecord>();
    record->hostname = read(store, "HOSTNAME");
    record->type = read(store, "TYPE") == QLatin1String("P2P") ? CAMERA_TYPE_P2P : CAMERA_TYPE_IP;
    record->username = read(store, "USERNAME");
    record->password = read(store, "PASSWORD");
    record->name = read(store, "NAME");
    record->multiLive = read(store, "MULTILIVE") == QLatin1String("1");
    return record;
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
    readFile();
    if (!QDir().mkpath(m_albumPath)) {
        qCWarning(lcSettings) << "cannot make the album folder" << m_albumPath;
    }
    return 0;
}

void CameraSettings::readFile()
{
    m_records.clear();
    const Store store = openStore(m_configFile, "r");
    if (!store) {
        return;
    }
    const QString album = read(store, "ALBUMPATH");
    if (!album.isEmpty()) {
        setAlbumPath(album);
    }
    // The same rule as addRecord, which would look through the list for each of many records.
    QSet<QString> hostnames;
    for (int i = 0; ini_select_section(store.get(), QByteArray::number(i)) == 0; ++i) {
        auto record = readRecord(store);
        if (record->hostname.isEmpty() || hostnames.contains(record->hostname)) {
            continue;
        }
        hostnames.insert(record->hostname);
        m_records.push_back(std::move(record));
    }
}

int CameraSettings::save() const
{
    QDir().mkpath(m_configDir);
    const Store store = openStore(m_configFile, "w");
    if (!store) {
        return 0;
    }
    write(store, "ALBUMPATH", m_albumPath);
    for (int i = 0; i < count(); ++i) {
        ini_use_section(store.get(), QByteArray::number(i));
        writeRecord(store, *at(i));
    }
    if (ini_flush(store.get()) != 0) {
        qCWarning(lcSettings) << "cannot write" << m_configFile;
    }
    return 0;
}

CameraRecord *CameraSettings::addRecord(int type, const QString &hostname, const QString &username,
                                        const QString &password, const QString &name,
                                        bool multiLive)
{
    const auto sameHost = [&](const auto &record) { return record->hostname == hostname; };
    if (std::any_of(m_records.begin(), m_records.end(), sameHost)) {
        return nullptr;
    }
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
    if (found != m_records.end()) {
        m_records.erase(found);
    }
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
    m_albumPath = slashed(path);
}

QString CameraSettings::cameraFolder(const QString &hostname) const
{
    const QString root = m_albumPath + QLatin1Char('/');
    const QString folder = root + zelvaro::folderOfHost(hostname);
    // An album that was begun under the host name itself is kept.
    const QString former = root + hostFolderAsTyped(hostname);
    return former != folder && QFileInfo(former).isDir() ? former : folder;
}
