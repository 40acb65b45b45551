#pragma once

#include <string>

namespace media {

/// Removes what PartFile left in a folder when its process was killed: files that PartFile names
/// and that were last written before this process began. Waits for the disk.
void removeLeftOvers(const std::string &folder);

/// Does so in the background for the folder of a file that is about to be written, once for each
/// folder and process. Any thread; never waits.
void tidyFolderOf(const std::string &path);

} // namespace media
