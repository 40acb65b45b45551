#define _POSIX_C_SOURCE 200809L

#include "settings/safe_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

/* As many as the kernel follows. */
enum
{
    MAX_LINKS = 40,
    MAX_LINK_TEXT = 4096
};

struct safe_file
{
    FILE *stream;
    char *target;    /* where the content goes */
    char *temporary; /* where it is written, in the same folder */
};

/* Length of the folder part of path with its slash; 0 when there is none. */
static size_t folder_length(const char *path)
{
    const char *slash = strrchr(path, '/');
    return slash ? (size_t)(slash - path) + 1 : 0;
}

static char *joined(const char *head, size_t head_length, const char *tail)
{
    const size_t tail_length = strlen(tail);
    char *text = malloc(head_length + tail_length + 1);
    if (text) {
        memcpy(text, head, head_length);
        memcpy(text + head_length, tail, tail_length + 1);
    }
    return text;
}

/* The file that path leads to, which need not exist. To be freed; NULL when it cannot be told. */
static char *link_target(const char *path)
{
    char *current = joined(path, strlen(path), "");
    for (int i = 0; current && i < MAX_LINKS; ++i) {
        char text[MAX_LINK_TEXT];
        const ssize_t length = readlink(current, text, sizeof text - 1);
        if (length < 0) {
            return current;
        }
        text[length] = '\0';
        char *next = joined(current, text[0] == '/' ? 0 : folder_length(current), text);
        free(current);
        current = next;
    }
    free(current);
    return NULL;
}

static void forget(safe_file *file)
{
    free(file->target);
    free(file->temporary);
    free(file);
}

static int32_t replaceable(const char *path)
{
    struct stat status;
    return lstat(path, &status) == 0 ? S_ISREG(status.st_mode) : errno == ENOENT;
}

/* Opens the temporary file; mkstemp makes it for its owner only. */
static FILE *open_temporary(char *name)
{
    const int handle = mkstemp(name);
    if (handle < 0) {
        return NULL;
    }
    fcntl(handle, F_SETFD, FD_CLOEXEC);
    FILE *stream = fdopen(handle, "w");
    if (!stream) {
        close(handle);
        unlink(name);
    }
    return stream;
}

FILE *safe_file_read(const char *path)
{
    struct stat status;
    const int handle = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (handle < 0) {
        return NULL;
    }
    const int32_t plain = fstat(handle, &status) == 0 && S_ISREG(status.st_mode);
    FILE *stream = plain ? fdopen(handle, "r") : NULL;
    if (!stream) {
        close(handle);
    }
    return stream;
}

safe_file *safe_file_create(const char *path)
{
    safe_file *file = calloc(1, sizeof *file);
    if (!file) {
        return NULL;
    }
    file->target = link_target(path);
    if (file->target && replaceable(file->target)) {
        file->temporary = joined(file->target, strlen(file->target), ".XXXXXX");
    }
    if (file->temporary) {
        file->stream = open_temporary(file->temporary);
    }
    if (!file->stream) {
        forget(file);
        return NULL;
    }
    return file;
}

FILE *safe_file_stream(safe_file *file)
{
    return file->stream;
}

/* Makes the new name last. The content is safe already, so a folder that cannot be synchronised,
 * as on some network disks, is no failure. */
static void sync_folder(const char *path)
{
    const size_t length = folder_length(path);
    char *folder = length ? joined(path, length, "") : joined(".", 1, "");
    const int handle = folder ? open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
    if (handle >= 0) {
        fsync(handle);
        close(handle);
    }
    free(folder);
}

int32_t safe_file_commit(safe_file *file)
{
    int32_t done = fflush(file->stream) == 0 && fsync(fileno(file->stream)) == 0;
    done = fclose(file->stream) == 0 && done;
    done = done && rename(file->temporary, file->target) == 0;
    if (done) {
        sync_folder(file->target);
    } else {
        unlink(file->temporary);
    }
    forget(file);
    return done ? 0 : -1;
}

void safe_file_abandon(safe_file *file)
{
    fclose(file->stream);
    unlink(file->temporary);
    forget(file);
}
