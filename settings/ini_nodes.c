#include "settings/ini_nodes.h"

#include <stdlib.h>
#include <string.h>

enum
{
    FIRST_SLOTS = 64
};

char *ini_copy_bytes(const char *text, size_t length)
{
    char *copy = malloc(length + 1);
    if (copy) {
        memcpy(copy, text, length);
        copy[length] = '\0';
    }
    return copy;
}

/* FNV-1a. */
static size_t slot_of(const char *name, size_t slot_count)
{
    uint32_t hash = 2166136261u;
    for (; *name; ++name) {
        hash = (hash ^ (unsigned char)*name) * 16777619u;
    }
    return hash % slot_count;
}

static void index_put(ini_index *index, ini_section *section)
{
    const size_t slot = slot_of(section->name, index->slot_count);
    section->chain = NULL;
    if (index->first[slot]) {
        index->last[slot]->chain = section;
    } else {
        index->first[slot] = section;
    }
    index->last[slot] = section;
}

static int32_t index_resize(ini_file *file, size_t slot_count)
{
    ini_index grown = {calloc(slot_count, sizeof *grown.first),
                       calloc(slot_count, sizeof *grown.last), slot_count, file->index.used};
    if (!grown.first || !grown.last) {
        free(grown.first);
        free(grown.last);
        return -1;
    }
    /* In the order of the file, so that the first of equal names stays first in its chain. */
    for (ini_section *s = file->sections.next; s != &file->sections; s = s->next) {
        index_put(&grown, s);
    }
    free(file->index.first);
    free(file->index.last);
    file->index = grown;
    return 0;
}

static void index_take(ini_index *index, const ini_section *section)
{
    const size_t slot = slot_of(section->name, index->slot_count);
    ini_section *before = NULL;
    ini_section *s = index->first[slot];
    while (s && s != section) {
        before = s;
        s = s->chain;
    }
    if (!s) {
        return;
    }
    if (before) {
        before->chain = s->chain;
    } else {
        index->first[slot] = s->chain;
    }
    if (index->last[slot] == s) {
        index->last[slot] = before;
    }
    --index->used;
}

void ini_section_init(ini_section *section)
{
    memset(section, 0, sizeof *section);
    section->next = section->prev = section;
    section->entries.next = section->entries.prev = &section->entries;
    section->cursor = &section->entries;
}

ini_section *ini_section_append(ini_file *file, const char *name)
{
    /* A longer chain is only slower, so a table that cannot grow is no failure once there is
     * one. */
    if (file->index.used >= file->index.slot_count) {
        const size_t slot_count = file->index.slot_count ? file->index.slot_count * 2 : FIRST_SLOTS;
        if (index_resize(file, slot_count) != 0 && file->index.slot_count == 0) {
            return NULL;
        }
    }
    ini_section *section = malloc(sizeof *section);
    char *copy = ini_copy_bytes(name, strlen(name));
    if (!section || !copy) {
        free(section);
        free(copy);
        return NULL;
    }
    ini_section_init(section);
    section->name = copy;
    section->prev = file->sections.prev;
    section->next = &file->sections;
    section->prev->next = section;
    file->sections.prev = section;
    index_put(&file->index, section);
    ++file->index.used;
    return section;
}

ini_section *ini_section_find(ini_file *file, const char *name)
{
    if (!name || !*name) {
        return &file->sections;
    }
    if (file->index.slot_count == 0) {
        return NULL;
    }
    ini_section *s = file->index.first[slot_of(name, file->index.slot_count)];
    while (s && strcmp(s->name, name) != 0) {
        s = s->chain;
    }
    return s;
}

void ini_section_clear(ini_section *section)
{
    while (section->entries.next != &section->entries) {
        ini_entry_remove(section, section->entries.next);
    }
    free(section->name);
    section->name = NULL;
}

void ini_section_remove(ini_file *file, ini_section *section)
{
    index_take(&file->index, section);
    section->prev->next = section->next;
    section->next->prev = section->prev;
    ini_section_clear(section);
    free(section);
}

ini_entry *ini_entry_append(ini_section *section, char *key, char *value, char *comment)
{
    ini_entry *entry = malloc(sizeof *entry);
    if (!entry) {
        free(key);
        free(value);
        free(comment);
        return NULL;
    }
    *entry = (ini_entry){&section->entries, section->entries.prev, key, value, comment};
    entry->prev->next = entry;
    section->entries.prev = entry;
    return entry;
}

ini_entry *ini_entry_find(ini_section *section, const char *key)
{
    if (!key) {
        return NULL;
    }
    for (ini_entry *e = section->entries.next; e != &section->entries; e = e->next) {
        if (e->key && strcmp(e->key, key) == 0) {
            return e;
        }
    }
    return NULL;
}

void ini_entry_remove(ini_section *section, ini_entry *entry)
{
    if (section->cursor == entry) {
        section->cursor = entry->prev;
    }
    entry->prev->next = entry->next;
    entry->next->prev = entry->prev;
    free(entry->key);
    free(entry->value);
    free(entry->comment);
    free(entry);
}
