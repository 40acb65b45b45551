#pragma once

#include <string>

namespace media {

/// The file of one clip of a recording: base + ".mp4" for the first, base + "_0002.mp4" for the
/// second and so on. Four digits, so that the clips sort in their order by name.
std::string clipPath(const std::string &base, int number);

/// The number at which a recording with this base may begin: no clip of that number or a later one
/// is on the disk or still being written by this process. 0 when all numbers are taken. Looks at
/// the disk. Any thread.
int firstFreeClip(const std::string &base);

/// Keeps a path for one clip of this process: firstFreeClip() passes it over, also when the file
/// was deleted while it grew.
class ClipClaim
{
public:
    explicit ClipClaim(std::string path);
    ~ClipClaim();
    ClipClaim(const ClipClaim &) = delete;
    ClipClaim &operator=(const ClipClaim &) = delete;

    const std::string &path() const { return m_path; }

private:
    const std::string m_path;
};

} // namespace media
