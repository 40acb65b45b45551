#include "settings/ini_nodes.h"

#include <stdlib.h>
#include <string.h>

/* A longer line is several lines. */
enum
{
    LINE_BUFFER = INI_LINE + 1
};

static const char BLANKS[] = " \t\r\n";

/* A stretch of bytes within the line. */
typedef struct span
{
    const char *start;
    size_t length;
} span;

static span stripped(const char *start, size_t length, const char *set)
{
    while (length > 0 && strchr(set, start[0])) {
        ++start;
        --length;
    }
    while (length > 0 && strchr(set, start[length - 1])) {
        --length;
    }
    return (span){start, length};
}

/* There is no escaping: after an opening quote the last byte is removed, whatever it is. */
static span unquoted(span value)
{
    if (value.length == 0 || value.start[0] != '"') {
        return value;
    }
    ++value.start;
    value.length = value.length > 2 ? value.length - 2 : 0;
    return value;
}

static void load_comment(ini_section *section, const char *line)
{
    char *comment = ini_copy_bytes(line, strlen(line));
    if (comment) {
        ini_entry_append(section, NULL, NULL, comment);
    }
}

static void load_pair(ini_section *section, const char *key_start)
{
    const size_t key_length = strcspn(key_start, "=");
    const span key = stripped(key_start, key_length, " \t\r\n\"");
    char *key_copy = ini_copy_bytes(key.start, key.length);
    if (!key_copy) {
        return;
    }
    char *value_copy = NULL;
    const char *rest = key_start + key_length;
    if (*rest == '=' && rest[1]) {
        const span value = unquoted(stripped(rest + 1, strlen(rest + 1), BLANKS));
        value_copy = ini_copy_bytes(value.start, value.length);
        if (!value_copy) {
            free(key_copy);
            return;
        }
    }
    ini_entry_append(section, key_copy, value_copy, NULL);
}

/* Adds the line to the section; the result is the section for the next line. */
static ini_section *load_line(ini_file *file, ini_section *section, char *line)
{
    const char first = line[strspn(line, BLANKS)];
    if (first == '[') {
        const span name = stripped(line, strlen(line), " \t\r\n\"[]");
        char copy[LINE_BUFFER];
        memcpy(copy, name.start, name.length);
        copy[name.length] = '\0';
        ini_section *made = ini_section_append(file, copy);
        return made ? made : section;
    }
    /* A key begins after any "=" at the start of the line. A line of nothing else has no key: it is
     * kept as it is, so that nothing of the file is lost when it is written back. */
    const char *key = line + strspn(line, "=");
    if (first == '#' || !strchr(line, '=') || !*key) {
        load_comment(section, line);
    } else {
        load_pair(section, key);
    }
    return section;
}

/* Passes over the mark that some editors put before UTF-8: taken for a part of the first line, it
 * would hide that line's key or header. */
static void skip_byte_order_mark(FILE *stream)
{
    char mark[3];
    if (fread(mark, 1, sizeof mark, stream) != sizeof mark ||
        memcmp(mark, "\xEF\xBB\xBF", 3) != 0) {
        rewind(stream);
    }
}

void ini_load(ini_file *file, FILE *stream)
{
    char line[LINE_BUFFER];
    ini_section *section = &file->sections;
    skip_byte_order_mark(stream);
    while (fgets(line, sizeof line, stream)) {
        const size_t length = strlen(line);
        if (length > 0 && line[length - 1] == '\n') {
            line[length - 1] = '\0';
        }
        section = load_line(file, section, line);
    }
}
