// The inventory of the last run as an XML document, to tell what is new or changed since.
#pragma once

#include "inventory/table.h"

/// Writes the rows to `path`, with the folders that are missing. Written in place; what fails is
/// lost without a word. Main thread, and no other thread may work on the table.
void write_history(const Table& lastEntries, const String& path);

/// Adds the rows of the file at `path`. False, with none added, if there is no such file, it is
/// malformed or of another version. Throws UserException "column not found" at an attribute that is
/// no column; the rows before it stay.
bool read_history(const String& path, Table& lastEntries);
