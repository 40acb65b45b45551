#include "settings/ini_nodes.h"

#include <string.h>

static void save_pair(const ini_entry *entry, FILE *stream)
{
    fputs(entry->key, stream);
    fputc('=', stream);
    if (entry->value) {
        const char *quote = strpbrk(entry->value, " \"") ? "\"" : "";
        fprintf(stream, "%s%s%s", quote, entry->value, quote);
    }
    if (entry->comment) {
        fprintf(stream, "   %s", entry->comment);
    }
}

static void save_entries(const ini_section *section, FILE *stream)
{
    for (const ini_entry *e = section->entries.next; e != &section->entries; e = e->next) {
        if (e->key) {
            save_pair(e, stream);
        } else if (e->comment) {
            fputs(e->comment, stream);
        }
        fputc('\n', stream);
    }
}

int32_t ini_save(const ini_file *file, FILE *stream)
{
    save_entries(&file->sections, stream);
    for (const ini_section *s = file->sections.next; s != &file->sections; s = s->next) {
        fprintf(stream, "[%s]\n", s->name);
        save_entries(s, stream);
    }
    return ferror(stream) ? -1 : 0;
}
