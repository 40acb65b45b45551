/*
 * ini_store.h - a store for text files of "key=value" lines under "[section]" headers.
 *
 * Every line is kept, comments and blank lines too, in the order of the file. Lookups are by exact
 * bytes and find the first of several equal names. Status results: 0 success, -1 failure. Strings
 * passed in are copied; strings handed out belong to the store and stay valid until their entry
 * changes or the handle is closed. One handle is used from one thread at a time.
 */
#ifndef ZELVARO_INI_STORE_H
#define ZELVARO_INI_STORE_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* C names. NOLINTBEGIN(readability-identifier-naming) */

enum
{
    INI_READ = 1,
    INI_WRITE = 2
};

enum
{
    INI_LINE = 255 /* bytes of a line that are read as one, without its end */
};

/* One line. A list of lines is circular, with a head that carries no strings. */
typedef struct ini_entry
{
    struct ini_entry *next;
    struct ini_entry *prev;
    char *key;     /* NULL for a line that is not "key=value" */
    char *value;   /* NULL when nothing follows the "=" */
    char *comment; /* the whole line of a comment or blank line */
} ini_entry;

typedef struct ini_section
{
    struct ini_section *next;
    struct ini_section *prev;
    char *name;                /* NULL only for the leading section */
    ini_entry entries;         /* head of the list of lines */
    ini_entry *cursor;         /* line that ini_next_entry visited last; the head at first */
    struct ini_section *chain; /* next section in the same slot of the name index */
} ini_section;

/* Sections by name. A slot's chain is in the order of the file. */
typedef struct ini_index
{
    ini_section **first;
    ini_section **last;
    size_t slot_count;
    size_t used;
} ini_index;

typedef struct ini_file
{
    char *path; /* NULL: in memory only */
    int32_t mode;
    int32_t dirty;        /* 1 when the content differs from the file */
    int32_t unread;       /* 1 when a file is there and could not be read, or not to its end */
    ini_section sections; /* head of the list; holds the lines before the first header */
    ini_section *current; /* the section that key operations act on */
    ini_index index;
} ini_file;

/*
 * Opens a store. mode: "r" read, "w" write, "w+" both; anything else neither. With reading, the
 * file is loaded; one that cannot be opened is an empty store. Lines are read in pieces of at most
 * INI_LINE bytes, each taken as a separate line. The mark that some editors put before UTF-8 is no
 * part of the first line. NULL only when memory runs out.
 */
ini_file *ini_open(const char *path, const char *mode);

/*
 * Writes the store to its path, readable by the owner only, as safe_file_commit does. A symbolic
 * link is followed. 0 without writing when there is no path or no write flag; -1, with the dirty
 * flag kept, on failure.
 */
int32_t ini_flush(ini_file *file);

/* Writes what has changed, frees everything. A failed write goes unnoticed. 0. NULL is allowed. */
int32_t ini_close(ini_file *file);

/* Selects a section, appending it when there is none. NULL or "": the leading section. */
int32_t ini_use_section(ini_file *file, const char *name);

/* Selects an existing section; -1 and no change when there is none. NULL or "": the leading one. */
int32_t ini_select_section(ini_file *file, const char *name);

/* Selects the section after the current one and returns its name; -1 after the last. */
int32_t ini_next_section(ini_file *file, const char **name);

/* Removes the first section of that name with its lines; -1 when there is none and for the
 * leading section, which always stays. The leading section is selected when it was the selected
 * one that went. */
int32_t ini_delete_section(ini_file *file, const char *name);

/* Value of a key in the current section: NULL without the key, "" without a value. */
const char *ini_get(ini_file *file, const char *key);

/* The same, "" also without the key. */
const char *ini_get_string(ini_file *file, const char *key);

/* Replaces the value of a key (NULL or "" makes it absent), or appends the key to the current
 * section with the value as given. */
int32_t ini_set(ini_file *file, const char *key, const char *value);

/* Removes the first entry with that key; -1 when there is none. */
int32_t ini_delete_key(ini_file *file, const char *key);

/* Renames the first entry with that key; NULL or "" leaves it without one, to be written as an
 * empty line. -1 when there is none. */
int32_t ini_rename_key(ini_file *file, const char *key, const char *new_key);

/* Bytes of the line that a key and its value are written as, without its end; value may be NULL. */
size_t ini_pair_length(const char *key, const char *value);

/* Visits the next line of the current section; key and value may be NULL. -1 at the end. */
int32_t ini_next_entry(ini_file *file, const char **key, const char **value);

/* NOLINTEND(readability-identifier-naming) */

#ifdef __cplusplus
}
#endif

#endif
