// Which kind of file a name stands for.
#pragma once

#include "orlo/rstring.h"

/// True if the name ends in "xls", in whatever case, with at least one character before it.
bool is_workbook_name(const String& fileName);
