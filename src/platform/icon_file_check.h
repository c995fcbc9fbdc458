// A file with icons, looked at before the platform takes one from it.
#pragma once

#include "orlo/raw_file.h"

/// The platform may follow the tables that lead to a file's icons wherever they lead. False if
/// those that lead to the icon at `index` (of the same meaning as for IconExtractor) lead out of
/// the file: programs and libraries of both kinds, and icon files. Anything else is left to the
/// platform.
bool check_icon_file(ORLO::RawFile& file, int32_t index);
