#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

namespace media {

/// Distinguishes a file from another one that takes its name later. Systems that number no files
/// tell only whether there is one.
class FileIdentity
{
public:
    /// Of the file at a path now; nullopt when there is none.
    static std::optional<FileIdentity> of(const std::string &path);
    bool operator==(const FileIdentity &) const = default;

private:
    uint64_t m_device = 0;
    uint64_t m_number = 0;
};

/// A temporary file next to the one it replaces: the path always leads to the old file or to the
/// complete new one, whenever the process dies. Removed with this object unless it was put in
/// place.
class PartFile
{
public:
    /// path: bytes of the file system.
    explicit PartFile(std::string path);
    ~PartFile();
    PartFile(const PartFile &) = delete;
    PartFile &operator=(const PartFile &) = delete;

    /// Failures are reported by putInPlace().
    void write(const void *data, std::size_t size);
    /// Waits until what was written is on the disk, so that it outlives a power failure.
    void flush();
    /// Puts it at the path, over a file that is there; false when it, or what was written before,
    /// did not succeed. The file at the path is then as before.
    bool putInPlace();
    /// The same, unless the file at the path is missing or another one than it was: then false.
    bool putInPlaceOf(const FileIdentity &old);

private:
    const std::string m_path;
    const std::string m_beside;
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> m_file;
    bool m_good = false;
};

} // namespace media
