/*
 * safe_file.h - replaces a file so that a reader, and the program itself after it was killed in the
 * middle, finds either the old or the new content whole. The file can be read and written by its
 * owner only, and keeps its owner. One source for each system.
 */
#ifndef ZELVARO_SAFE_FILE_H
#define ZELVARO_SAFE_FILE_H

#include <stdint.h>
#include <stdio.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct safe_file safe_file;

/* Opens a plain file for reading in text mode. NULL when there is none, and for anything that could
 * keep the reader waiting or never end, as a pipe or a device. To be closed with fclose. */
FILE *safe_file_read(const char *path);

/*
 * Begins the new content of path, which is made when it does not exist; a symbolic link stays and
 * the file that it leads to is replaced. NULL when the file is there and may not be written, or
 * when it is not a plain file.
 */
safe_file *safe_file_create(const char *path);

/* Where to write the content, in text mode. Owned by the safe file. */
FILE *safe_file_stream(safe_file *file);

/*
 * Puts the content in the place of the file, on the disk: by a new file next to it that takes its
 * name, or, where the folder or the system does not let the name change hands, over the old bytes.
 * Only then can a crash leave it half written. Frees file. -1 on failure, with the old file as it
 * was.
 */
int32_t safe_file_commit(safe_file *file);

/* Drops the new content and frees file. */
void safe_file_abandon(safe_file *file);

/*
 * Keeps the file as it is now under path + ".bak", for its owner only; an older copy is replaced. 0
 * also when there is no file; -1 when the copy cannot be made. A file that cannot be read gets the
 * second name without a copy, which the next replacement leaves to that name alone.
 */
int32_t safe_file_keep_copy(const char *path);

/* Removes what replacements of path left behind when their process was killed. */
void safe_file_clean(const char *path);

#ifdef __cplusplus
}
#endif

#endif
