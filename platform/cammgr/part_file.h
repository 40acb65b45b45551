#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

namespace cammgr {

/// A file that is written beside the one whose place it takes: who looks at the path sees the old
/// file or the whole new one, whenever the process dies. Gone with this object unless it was put
/// in place.
class PartFile
{
public:
    /// path: bytes of the file system.
    explicit PartFile(std::string path);
    ~PartFile();
    PartFile(const PartFile &) = delete;
    PartFile &operator=(const PartFile &) = delete;

    /// Failures are told by putInPlace().
    void write(const void *data, std::size_t size);
    /// Waits until what was written is on the disk, so that it outlives a power failure.
    void flush();
    /// Puts it at the path, over a file that is there; false when it, or what was written before,
    /// did not succeed. The file at the path is then as before.
    bool putInPlace();

private:
    const std::string m_path;
    const std::string m_beside;
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> m_file;
    bool m_good = false;
};

} // namespace cammgr
