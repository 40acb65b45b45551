/*
 * ini_nodes.h - the lists that a store is made of. For the sources of the store only.
 *
 * A name that is in use is never NULL except for the leading section.
 */
#ifndef ZELVARO_INI_NODES_H
#define ZELVARO_INI_NODES_H

#include "settings/ini_store.h"

#include <stdio.h>

/* Copy of the first length bytes, NUL-terminated; NULL when memory runs out. */
char *ini_copy_bytes(const char *text, size_t length);

/* Makes a section's fields those of an empty one that is linked to itself. */
void ini_section_init(ini_section *section);

/* Appends an empty section; NULL when memory runs out. Takes a copy of name. */
ini_section *ini_section_append(ini_file *file, const char *name);

/* First section of that name, NULL or "" meaning the leading one; NULL when there is none. */
ini_section *ini_section_find(ini_file *file, const char *name);

/* Unlinks a named section and frees it. */
void ini_section_remove(ini_file *file, ini_section *section);

/* Frees the lines and the name of a section, not the section. */
void ini_section_clear(ini_section *section);

/* Appends a line that takes over the three strings, which come from malloc or are NULL. When
 * memory runs out the strings are freed and NULL is the result. */
ini_entry *ini_entry_append(ini_section *section, char *key, char *value, char *comment);

/* First entry with that key; NULL when there is none. */
ini_entry *ini_entry_find(ini_section *section, const char *key);

/* Unlinks a line and frees it. A cursor on it steps back. */
void ini_entry_remove(ini_section *section, ini_entry *entry);

/* Appends what the stream holds. */
void ini_load(ini_file *file, FILE *stream);

/* Writes the store to the stream; -1 when the stream has an error. */
int32_t ini_save(const ini_file *file, FILE *stream);

#endif
