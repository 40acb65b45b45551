#define _POSIX_C_SOURCE 200809L

#include "settings/safe_file.h"

#include <dirent.h>
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

static const char TEMPORARY[] = ".new-XXXXXX"; /* what mkstemp fills in is its last six bytes */
static const char COPY[] = ".bak";

struct safe_file
{
    FILE *stream; /* writes to bytes */
    char *bytes;
    size_t length;
    char *target;       /* the file to be written */
    int handle;         /* the target, open for writing; -1 when it does not exist */
    struct stat status; /* of the target, when it exists */
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

/* The file that path leads to, which need not exist. To be freed; NULL when it cannot be found. */
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

/* Opens a plain file; -1 for anything else. Never waits. */
static int open_plain(const char *path, int flags, struct stat *status)
{
    const int handle = open(path, flags | O_NONBLOCK | O_CLOEXEC);
    if (handle >= 0 && (fstat(handle, status) != 0 || !S_ISREG(status->st_mode))) {
        close(handle);
        errno = EINVAL;
        return -1;
    }
    return handle;
}

FILE *safe_file_read(const char *path)
{
    struct stat status;
    const int handle = open_plain(path, O_RDONLY, &status);
    FILE *stream = handle >= 0 ? fdopen(handle, "r") : NULL;
    if (handle >= 0 && !stream) {
        close(handle);
    }
    return stream;
}

static void forget(safe_file *file)
{
    if (file->stream) {
        fclose(file->stream);
    }
    if (file->handle >= 0) {
        close(file->handle);
    }
    free(file->bytes);
    free(file->target);
    free(file);
}

safe_file *safe_file_create(const char *path)
{
    safe_file *file = calloc(1, sizeof *file);
    if (!file) {
        return NULL;
    }
    file->handle = -1;
    file->target = link_target(path);
    if (file->target) {
        /* Asked here, because a new file could take the name of one that may not be written. */
        file->handle = open_plain(file->target, O_WRONLY, &file->status);
        if (file->handle >= 0 || errno == ENOENT) {
            file->stream = open_memstream(&file->bytes, &file->length);
        }
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

static int32_t write_all(int handle, const char *bytes, size_t length)
{
    while (length > 0) {
        const ssize_t written = write(handle, bytes, length);
        if (written < 0 && errno != EINTR) {
            return -1;
        }
        if (written > 0) {
            bytes += written;
            length -= (size_t)written;
        }
    }
    return 0;
}

/* Fills a new file for the owner of the old one, if there is one. Closes handle. */
static int32_t fill(int handle, const safe_file *file)
{
    const struct stat *old = file->handle >= 0 ? &file->status : NULL;
    int32_t done = write_all(handle, file->bytes, file->length) == 0;
    if (done && old && (old->st_uid != geteuid() || old->st_gid != getegid())) {
        /* The group may be one that only the super-user can give; the owner is what counts. */
        done = fchown(handle, old->st_uid, old->st_gid) == 0 || old->st_uid == geteuid();
    }
    done = done && fsync(handle) == 0;
    return close(handle) == 0 && done ? 0 : -1;
}

/* Writes a new file next to the target and gives it the name. -1 with errno on failure. */
static int32_t replace(const safe_file *file, const char *name)
{
    char *temporary = joined(name, strlen(name), TEMPORARY);
    const int handle = temporary ? mkstemp(temporary) : -1; /* for its owner only */
    if (handle < 0) {
        free(temporary);
        return -1;
    }
    fcntl(handle, F_SETFD, FD_CLOEXEC);
    const int32_t done = fill(handle, file) == 0 && rename(temporary, name) == 0;
    const int reason = errno;
    if (!done) {
        unlink(temporary);
    }
    free(temporary);
    errno = reason;
    return done ? 0 : -1;
}

/* Whether a file could not be put in the place of the old one although that one can be written: a
 * folder that may not, a file that is mounted by itself, an owner that cannot be given, a name that
 * is too long. A full disk is none of it. */
static int32_t stays_in_its_place(int reason)
{
    return reason == EACCES || reason == EPERM || reason == EROFS || reason == EBUSY ||
           reason == EXDEV || reason == ENAMETOOLONG;
}

/* Writes over the old bytes. Room is taken first, so that a full disk changes nothing. */
static int32_t overwrite(const safe_file *file)
{
    const off_t old_length = file->status.st_size;
    const off_t length = (off_t)file->length;
    const int failed =
        length > old_length ? posix_fallocate(file->handle, old_length, length - old_length) : 0;
    const int32_t full = failed && failed != EOPNOTSUPP && failed != EINVAL;
    if (full && ftruncate(file->handle, old_length) == 0) {
        return -1;
    }
    if (full || write_all(file->handle, file->bytes, file->length) != 0 ||
        ftruncate(file->handle, length) != 0) {
        return -1;
    }
    fchmod(file->handle, S_IRUSR | S_IWUSR); /* refused to all but the owner */
    return fsync(file->handle);
}

int32_t safe_file_commit(safe_file *file)
{
    int32_t done = fclose(file->stream) == 0;
    file->stream = NULL;
    if (done && replace(file, file->target) != 0) {
        done = file->handle >= 0 && stays_in_its_place(errno) && overwrite(file) == 0;
    }
    forget(file);
    return done ? 0 : -1;
}

void safe_file_abandon(safe_file *file)
{
    forget(file);
}

/* Reads the file into the new content and its owner into the status. */
static int32_t load(safe_file *file)
{
    char block[4096];
    ssize_t length = 0;
    while ((length = read(file->handle, block, sizeof block)) > 0) {
        fwrite(block, 1, (size_t)length, file->stream);
    }
    const int32_t done = length == 0 && fclose(file->stream) == 0;
    if (done) {
        file->stream = NULL;
    }
    return done ? 0 : -1;
}

static int32_t second_name(const char *path, const char *copy)
{
    return (unlink(copy) == 0 || errno == ENOENT) && link(path, copy) == 0 ? 0 : -1;
}

int32_t safe_file_keep_copy(const char *path)
{
    safe_file *file = calloc(1, sizeof *file);
    if (!file) {
        return -1;
    }
    int32_t result = -1;
    file->handle = -1;
    file->target = link_target(path);
    char *copy = file->target ? joined(file->target, strlen(file->target), COPY) : NULL;
    if (copy) {
        file->handle = open_plain(file->target, O_RDONLY, &file->status);
        if (file->handle >= 0) {
            file->stream = open_memstream(&file->bytes, &file->length);
            result = file->stream && load(file) == 0 ? replace(file, copy) : -1;
        } else if (errno == EACCES) {
            result = second_name(file->target, copy);
        } else {
            result = errno == ENOENT ? 0 : -1;
        }
    }
    free(copy);
    forget(file);
    return result;
}

/* Whether name is that of a temporary file of base. */
static int32_t is_temporary(const char *name, const char *base)
{
    const size_t length = strlen(base);
    const size_t fixed = strlen(TEMPORARY) - 6;
    return strlen(name) == length + strlen(TEMPORARY) && strncmp(name, base, length) == 0 &&
           strncmp(name + length, TEMPORARY, fixed) == 0;
}

void safe_file_clean(const char *path)
{
    char *target = link_target(path);
    const size_t length = target ? folder_length(target) : 0;
    char *folder = length ? joined(target, length, "") : joined(".", 1, "");
    DIR *entries = target && folder ? opendir(folder) : NULL;
    const struct dirent *entry = NULL;
    while (entries && (entry = readdir(entries))) {
        if (is_temporary(entry->d_name, target + length)) {
            unlinkat(dirfd(entries), entry->d_name, 0);
        }
    }
    if (entries) {
        closedir(entries);
    }
    free(folder);
    free(target);
}
