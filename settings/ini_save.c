#include "settings/ini_nodes.h"

#include <string.h>

/* What a value is written between. */
static const char *quote_of(const char *value)
{
    return strpbrk(value, " \"") ? "\"" : "";
}

size_t ini_pair_length(const char *key, const char *value)
{
    const size_t length = strlen(key) + strlen("=");
    return value ? length + strlen(value) + 2 * strlen(quote_of(value)) : length;
}

static void save_pair(const ini_entry *entry, FILE *stream)
{
    fputs(entry->key, stream);
    fputc('=', stream);
    if (entry->value) {
        const char *quote = quote_of(entry->value);
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
