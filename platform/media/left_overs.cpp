#include "platform/media/left_overs.h"

#include "platform/media/worker_pool.h"

#include <glib.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <set>
#include <string_view>

namespace media {

namespace {

namespace fs = std::filesystem;

/// When the library was loaded: before it wrote anything.
const fs::file_time_type processBegin = fs::file_time_type::clock::now();

/// "name.number.part"
bool isPartName(std::string_view name)
{
    constexpr std::string_view ending = ".part";
    if (!name.ends_with(ending))
        return false;
    name.remove_suffix(ending.size());
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size())
        return false;
    const std::string_view number = name.substr(dot + 1);
    return std::all_of(number.begin(), number.end(), [](char c) { return g_ascii_isdigit(c); });
}

} // namespace

void removeLeftOvers(const std::string &folder)
{
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        std::error_code unreadable;
        if (isPartName(entry->path().filename().native()) && entry->is_regular_file(unreadable) &&
            entry->last_write_time(unreadable) < processBegin && !unreadable)
            fs::remove(entry->path(), unreadable);
    }
}

void tidyFolderOf(const std::string &path)
{
    static std::mutex lock;
    static std::set<std::string> *const tidied = new std::set<std::string>;
    std::string folder = fs::path(path).parent_path().string();
    {
        std::lock_guard guard(lock);
        if (!tidied->insert(folder).second)
            return;
    }
    mediaWorkers().run([folder = std::move(folder)] { removeLeftOvers(folder); });
}

} // namespace media
