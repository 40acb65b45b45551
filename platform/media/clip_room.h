#pragma once

#include <string>

namespace media {

/**
 * Removes the space reserved for `moov` from a finished MP4 by rewriting it to a temporary file
 * that is then renamed. A file in which that space is small compared to the rest, or which is laid
 * out in another way, stays as it is, and so does every file when anything fails: the path always
 * holds a file that plays. Takes as long as the disk needs for a copy of the file.
 */
void giveBackIndexRoom(const std::string &path);

} // namespace media
