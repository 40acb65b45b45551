#include "settings/safe_file.h"

#include <windows.h>

#include <io.h>
#include <stdlib.h>
#include <string.h>

/* What the system's names of temporary files begin with: three bytes. */
#define TEMPORARY "zel"
static const char COPY[] = ".bak";

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

/* Length of the folder part of path with its slash; 0 when there is none. */
static size_t folder_length(const char *path)
{
    size_t length = strlen(path);
    while (length > 0 && path[length - 1] != '/' && path[length - 1] != '\\') {
        --length;
    }
    return length;
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
    const size_t length = folder_length(file->target);
    if (length > 0) {
        memcpy(folder, file->target, length);
        folder[length] = '\0';
    }
    if (replaceable(file->target) && GetTempFileNameA(folder, TEMPORARY, 0, file->temporary) != 0) {
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

int32_t safe_file_keep_copy(const char *path)
{
    char target[MAX_PATH] = "";
    char copy[MAX_PATH] = "";
    if (strlen(path) >= MAX_PATH) {
        return -1;
    }
    link_target(path, target);
    if (GetFileAttributesA(target) == INVALID_FILE_ATTRIBUTES) {
        return 0;
    }
    if (strlen(target) + sizeof COPY > sizeof copy) {
        return -1;
    }
    strcpy(copy, target);
    strcat(copy, COPY);
    return CopyFileA(target, copy, FALSE) ? 0 : -1;
}

void safe_file_clean(const char *path)
{
    char target[MAX_PATH] = "";
    char pattern[MAX_PATH + 16] = "";
    if (strlen(path) >= MAX_PATH) {
        return;
    }
    link_target(path, target);
    const size_t folder = folder_length(target);
    memcpy(pattern, target, folder);
    strcpy(pattern + folder, TEMPORARY "*.tmp");
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA(pattern, &found);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        char name[2 * MAX_PATH] = "";
        memcpy(name, target, folder);
        strcpy(name + folder, found.cFileName);
        DeleteFileA(name);
    } while (FindNextFileA(search, &found));
    FindClose(search);
}
