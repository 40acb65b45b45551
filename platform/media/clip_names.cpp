#include "platform/media/clip_names.h"

#include <glib.h>

#include <cstdio>
#include <mutex>
#include <set>

namespace media {

namespace {

constexpr int maxClips = 9999;

struct Claims
{
    std::mutex lock; ///< protects paths
    std::multiset<std::string> paths;
};

/// Never destroyed: a clip may be closed while the process ends.
Claims &claims()
{
    static auto *const all = new Claims;
    return *all;
}

bool isClaimed(const std::string &path)
{
    std::lock_guard lock(claims().lock);
    return claims().paths.contains(path);
}

} // namespace

std::string clipPath(const std::string &base, int number)
{
    if (number <= 1)
        return base + ".mp4";
    char suffix[32];
    std::snprintf(suffix, sizeof suffix, "_%04d.mp4", number);
    return base + suffix;
}

int firstFreeClip(const std::string &base)
{
    for (int number = 1; number <= maxClips; ++number) {
        const std::string path = clipPath(base, number);
        if (!isClaimed(path) && !g_file_test(path.c_str(), G_FILE_TEST_EXISTS))
            return number;
    }
    return 0;
}

ClipClaim::ClipClaim(std::string path) : m_path(std::move(path))
{
    std::lock_guard lock(claims().lock);
    claims().paths.insert(m_path);
}

ClipClaim::~ClipClaim()
{
    std::lock_guard lock(claims().lock);
    claims().paths.erase(claims().paths.find(m_path));
}

} // namespace media
