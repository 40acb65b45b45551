#include "settings/safe_file.h"

#include <windows.h>

#include <io.h>
#include <stdlib.h>
#include <string.h>

/* The profile folder that the settings live in is open to its owner only by inheritance. */
struct safe_file
{
    FILE *stream;
    char target[MAX_PATH];
    char temporary[MAX_PATH];
};

/* The file that path leads to; the path itself when nothing stands there. */
static void link_target(const char *path, char *target)
{
    char resolved[MAX_PATH];
    DWORD length = 0;
    const HANDLE handle = CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE, NULL,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, NULL);
    if (handle != INVALID_HANDLE_VALUE) {
        length = GetFinalPathNameByHandleA(handle, resolved, sizeof resolved, FILE_NAME_NORMALIZED);
        CloseHandle(handle);
    }
    const char *chosen = length > 0 && length < sizeof resolved ? resolved : path;
    strncpy(target, chosen, MAX_PATH - 1);
}

static int32_t replaceable(const char *path)
{
    const DWORD attributes = GetFileAttributesA(path);
    return attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

FILE *safe_file_read(const char *path)
{
    return fopen(path, "r");
}

safe_file *safe_file_create(const char *path)
{
    safe_file *file = calloc(1, sizeof *file);
    if (!file || strlen(path) >= MAX_PATH) {
        free(file);
        return NULL;
    }
    char folder[MAX_PATH] = ".";
    link_target(path, file->target);
    const size_t length = strlen(file->target);
    for (size_t i = length; i > 0; --i) {
        if (file->target[i - 1] == '/' || file->target[i - 1] == '\\') {
            memcpy(folder, file->target, i);
            folder[i] = '\0';
            break;
        }
    }
    if (replaceable(file->target) && GetTempFileNameA(folder, "zel", 0, file->temporary) != 0) {
        file->stream = fopen(file->temporary, "w");
        if (!file->stream) {
            DeleteFileA(file->temporary);
        }
    }
    if (!file->stream) {
        free(file);
        return NULL;
    }
    return file;
}

FILE *safe_file_stream(safe_file *file)
{
    return file->stream;
}

int32_t safe_file_commit(safe_file *file)
{
    int32_t done = fflush(file->stream) == 0 && _commit(_fileno(file->stream)) == 0;
    done = fclose(file->stream) == 0 && done;
    done = done && MoveFileExA(file->temporary, file->target,
                               MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
    if (!done) {
        DeleteFileA(file->temporary);
    }
    free(file);
    return done ? 0 : -1;
}

void safe_file_abandon(safe_file *file)
{
    fclose(file->stream);
    DeleteFileA(file->temporary);
    free(file);
}
