#pragma once

#include <string>

namespace cammgr {

/**
 * Gives back the room that a finished MP4 file kept for a longer index: writes the file once more
 * beside, without the room, and puts that in its place. A file in which the room is small beside
 * the rest, or which is laid out in another way, stays as it is, and so does every file when
 * anything fails: the path always holds a file that plays. Takes as long as the disk needs for a
 * copy of the file.
 */
void giveBackIndexRoom(const std::string &path);

} // namespace cammgr
