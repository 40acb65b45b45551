/*
 * safe_file.h - replaces a file in one step: a reader, and the program itself after it was killed
 * in the middle, finds either the old or the new content whole. The new file can be read and
 * written by its owner only. One source for each system.
 */
#ifndef ZELVARO_SAFE_FILE_H
#define ZELVARO_SAFE_FILE_H

#include <stdint.h>
#include <stdio.h>

typedef struct safe_file safe_file;

/* Opens a plain file for reading in text mode. NULL when there is none, and for anything that could
 * keep the reader waiting or never end, as a pipe or a device. To be closed with fclose. */
FILE *safe_file_read(const char *path);

/*
 * Begins the new content of path, which is made when it does not exist; a symbolic link stays and
 * the file that it leads to is replaced. NULL when no file can be made there, or when something
 * other than a plain file stands there.
 */
safe_file *safe_file_create(const char *path);

/* Where to write the content, in text mode. Owned by the safe file. */
FILE *safe_file_stream(safe_file *file);

/* Puts the content in the place of the file, on the disk. Frees file. -1 on failure, with the old
 * file as it was. */
int32_t safe_file_commit(safe_file *file);

/* Drops the new content and frees file. */
void safe_file_abandon(safe_file *file);

#endif
