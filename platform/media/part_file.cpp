#include "platform/media/part_file.h"

#include <glib/gstdio.h>

#include <atomic>
#include <utility>

namespace media {

namespace {

/// Two threads may write the same file.
std::string nameBeside(const std::string &path)
{
    static std::atomic<unsigned> counter = 0;
    return path + "." + std::to_string(++counter) + ".part";
}

} // namespace

std::optional<FileIdentity> FileIdentity::of(const std::string &path)
{
    GStatBuf status = {};
    if (g_stat(path.c_str(), &status) != 0)
        return std::nullopt;
    FileIdentity identity;
    identity.m_device = status.st_dev;
    identity.m_number = status.st_ino;
    return identity;
}

PartFile::PartFile(std::string path)
    : m_path(std::move(path))
    , m_beside(nameBeside(m_path))
    , m_file(std::fopen(m_beside.c_str(), "wb"), &std::fclose)
    , m_good(m_file != nullptr)
{
}

PartFile::~PartFile()
{
    m_file.reset();
    std::remove(m_beside.c_str()); // nothing is left there once it is in place
}

void PartFile::write(const void *data, std::size_t size)
{
    m_good = m_good && std::fwrite(data, 1, size, m_file.get()) == size;
}

void PartFile::flush()
{
    m_good = m_good && std::fflush(m_file.get()) == 0 && g_fsync(fileno(m_file.get())) == 0;
}

bool PartFile::putInPlaceOf(const FileIdentity &old)
{
    return FileIdentity::of(m_path) == old && putInPlace();
}

bool PartFile::putInPlace()
{
    if (m_file && std::fclose(m_file.release()) != 0)
        m_good = false;
    return m_good && std::rename(m_beside.c_str(), m_path.c_str()) == 0;
}

} // namespace media
