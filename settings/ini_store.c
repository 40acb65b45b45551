#include "settings/ini_store.h"

#include "settings/ini_nodes.h"
#include "settings/safe_file.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>

static int32_t mode_flags(const char *mode)
{
    static const struct
    {
        const char *text;
        int32_t flags;
    } modes[] = {{"r", INI_READ}, {"w", INI_WRITE}, {"w+", INI_READ | INI_WRITE}};
    for (size_t i = 0; mode && i < sizeof modes / sizeof modes[0]; ++i) {
        if (strcmp(mode, modes[i].text) == 0) {
            return modes[i].flags;
        }
    }
    return 0;
}

static void select_section(ini_file *file, ini_section *section)
{
    section->cursor = &section->entries;
    file->current = section;
}

static void load_file(ini_file *file)
{
    FILE *stream = safe_file_read(file->path);
    if (stream) {
        ini_load(file, stream);
        file->unread = ferror(stream) != 0;
        fclose(stream);
    } else {
        file->unread = errno != ENOENT && errno != ENOTDIR;
    }
}

ini_file *ini_open(const char *path, const char *mode)
{
    ini_file *file = calloc(1, sizeof *file);
    if (!file) {
        return NULL;
    }
    ini_section_init(&file->sections);
    file->current = &file->sections;
    file->mode = mode_flags(mode);
    if (!path) {
        return file;
    }
    file->path = ini_copy_bytes(path, strlen(path));
    if (!file->path) {
        free(file);
        return NULL;
    }
    if (file->mode & INI_READ) {
        load_file(file);
    }
    return file;
}

int32_t ini_flush(ini_file *file)
{
    if (!file->path || !(file->mode & INI_WRITE)) {
        return 0;
    }
    safe_file *target = safe_file_create(file->path);
    if (!target) {
        return -1;
    }
    if (ini_save(file, safe_file_stream(target)) != 0) {
        safe_file_abandon(target);
        return -1;
    }
    if (safe_file_commit(target) != 0) {
        return -1;
    }
    file->dirty = 0;
    return 0;
}

int32_t ini_close(ini_file *file)
{
    if (!file) {
        return 0;
    }
    if (file->dirty) {
        ini_flush(file);
    }
    ini_section *section = file->sections.next;
    while (section != &file->sections) {
        ini_section *next = section->next;
        ini_section_clear(section);
        free(section);
        section = next;
    }
    ini_section_clear(&file->sections);
    free(file->index.first);
    free(file->index.last);
    free(file->path);
    free(file);
    return 0;
}

int32_t ini_use_section(ini_file *file, const char *name)
{
    ini_section *section = ini_section_find(file, name);
    if (!section) {
        section = ini_section_append(file, name);
    }
    if (!section) {
        return -1;
    }
    select_section(file, section);
    return 0;
}

int32_t ini_select_section(ini_file *file, const char *name)
{
    ini_section *section = ini_section_find(file, name);
    if (!section) {
        return -1;
    }
    select_section(file, section);
    return 0;
}

int32_t ini_next_section(ini_file *file, const char **name)
{
    ini_section *section = file->current->next;
    if (section == &file->sections) {
        return -1;
    }
    select_section(file, section);
    if (name) {
        *name = section->name;
    }
    return 0;
}

int32_t ini_delete_section(ini_file *file, const char *name)
{
    ini_section *section = ini_section_find(file, name);
    if (!section || section == &file->sections) {
        return -1;
    }
    if (file->current == section) {
        select_section(file, &file->sections);
    }
    ini_section_remove(file, section);
    file->dirty = 1;
    return 0;
}

const char *ini_get(ini_file *file, const char *key)
{
    const ini_entry *entry = ini_entry_find(file->current, key);
    if (!entry) {
        return NULL;
    }
    return entry->value ? entry->value : "";
}

const char *ini_get_string(ini_file *file, const char *key)
{
    const char *value = ini_get(file, key);
    return value ? value : "";
}

/* Copies text into copy; no text is no copy. -1 when memory runs out. */
static int32_t copy_text(char **copy, const char *text)
{
    *copy = text ? ini_copy_bytes(text, strlen(text)) : NULL;
    return text && !*copy ? -1 : 0;
}

static int32_t append_pair(ini_section *section, const char *key, const char *value)
{
    char *key_copy = NULL;
    char *value_copy = NULL;
    if (copy_text(&key_copy, key) != 0 || copy_text(&value_copy, value) != 0) {
        free(key_copy);
        return -1;
    }
    return ini_entry_append(section, key_copy, value_copy, NULL) ? 0 : -1;
}

/* Puts a copy of text in the place of an entry's string; no or empty text makes it absent. */
static int32_t replace_text(char **string, const char *text)
{
    char *copy = NULL;
    if (copy_text(&copy, text && *text ? text : NULL) != 0) {
        return -1;
    }
    free(*string);
    *string = copy;
    return 0;
}

int32_t ini_set(ini_file *file, const char *key, const char *value)
{
    if (!key) {
        return -1;
    }
    ini_entry *entry = ini_entry_find(file->current, key);
    const int32_t result =
        entry ? replace_text(&entry->value, value) : append_pair(file->current, key, value);
    if (result == 0) {
        file->dirty = 1;
    }
    return result;
}

int32_t ini_delete_key(ini_file *file, const char *key)
{
    ini_entry *entry = ini_entry_find(file->current, key);
    if (!entry) {
        return -1;
    }
    ini_entry_remove(file->current, entry);
    file->dirty = 1;
    return 0;
}

int32_t ini_rename_key(ini_file *file, const char *key, const char *new_key)
{
    ini_entry *entry = ini_entry_find(file->current, key);
    if (!entry || replace_text(&entry->key, new_key) != 0) {
        return -1;
    }
    file->dirty = 1;
    return 0;
}

int32_t ini_next_entry(ini_file *file, const char **key, const char **value)
{
    ini_section *section = file->current;
    if (section->cursor->next == &section->entries) {
        return -1;
    }
    section->cursor = section->cursor->next;
    if (key) {
        *key = section->cursor->key;
    }
    if (value) {
        *value = section->cursor->value;
    }
    return 0;
}
